#include "engine/commands/clear.h"
#include "engine/commands/create.h"
#include "engine/commands/nurbs.h"
#include "engine/trails/queries.h"
#include "tests/contract/contract_test.h"

namespace vantorelix::contract {
namespace {

class CreationContract : public ContractTest {
 protected:
  static Lines preferences() {
    return option_missing("samplesPerFrame") + option_missing("lineWidth") + option_missing("pointSize") +
           option_missing("showLine") + option_missing("showDots") + option_missing("xrayMode") +
           option_missing("colorMode");
  }
  static Lines plugin_and_root(bool root_is_there) {
    const Lines found = {"cmds.pluginInfo('Vantorelix_plugin', q=True, loaded=True)",
                         "cmds.objExists('vantorelixs_grp')"};
    const Lines made = {"cmds.group(em=True, name='vantorelixs_grp')"};
    const Lines reference = {"cmds.setAttr('vantorelixs_grp.overrideEnabled', 1)",
                             "cmds.setAttr('vantorelixs_grp.overrideDisplayType', 2)"};
    return found + (root_is_there ? Lines{} : made) + reference;
  }
  // Ends first, then the middle of what is left; no look at the clock after the very first.
  static Lines coverage_first_samples() {
    return evaluation("1.0") + evaluation("5.0") + kClockRead + evaluation("3.0") + kClockRead + evaluation("2.0") +
           kClockRead + evaluation("4.0") + kClockRead;
  }
  Lines viz_node(const std::string& name) const {
    return {"cmds.createNode('vantorelix', name='" + name + "Shape')",
            "cmds.listRelatives('" + name + "Shape', parent=True, fullPath=True)",
            "cmds.rename('|" + host->fresh_transform(name) + "', '" + name + "')",
            "cmds.parent('" + name + "', 'vantorelixs_grp')"};
  }
  static Lines display(const std::string& viz, const std::string& shape) {
    return shapes_of(viz) + set_attribute(shape, "lineWidth", "2.5") + set_attribute(shape, "pointSize", "6.0") +
           set_attribute(shape, "showLine", "True") + set_attribute(shape, "showDots", "True") +
           set_attribute(shape, "xrayMode", "True") + set_attribute(shape, "colorMode", "0") +
           Lines{"cmds.playbackOptions(q=True, min=True)"} + set_attribute(shape, "startFrame", "1.0") +
           set_attribute(shape, "frameStep", "1.0");
  }
  static Lines callbacks() {
    return {"oma.MAnimMessage.addAnimCurveEditedCallback(_on_anim_edit)",
            "oma.MAnimMessage.addAnimKeyframeEditedCallback(_on_anim_edit)",
            "om.MDGMessage.addNodeRemovedCallback(_on_anim_edit, 'animCurve')"};
  }
  Lines ball_trail() const {
    return fast_sampler("|rig|ball") + coverage_first_samples() + kClockRead + key_times("|rig|ball") +
           evaluation("1.0") + evaluation("5.0") + viz_node("vlx_ball_viz") + push("vlx_ball_viz", kBallShape, 5, 2) +
           display("vlx_ball_viz", kBallShape);
  }
};

TEST_P(CreationContract, asks_for_no_more_than_preferences_and_selection_when_nothing_is_selected) {
  create_trail();
  EXPECT_EQ(log(), preferences() + Lines{"cmds.ls(sl=True, long=True)"} + message("Select an animated object first."));
}

TEST_P(CreationContract, builds_two_trails_and_restores_the_selection) {
  host->select({"|rig|ball", "|cube"});
  create_trail();
  const std::string cube_shape = "|vantorelixs_grp|vlx_cube_viz|vlx_cube_vizShape";
  const Lines cube_trail = fast_sampler("|cube") + coverage_first_samples() + kClockRead + key_times("|cube") +
                           viz_node("vlx_cube_viz") + push("vlx_cube_viz", cube_shape, 5, 0) +
                           display("vlx_cube_viz", cube_shape);
  const Lines panels = {"cmds.getPanel(type='modelPanel')",
                        "cmds.modelEditor('modelPanel1', q=True, motionTrails=True)",
                        "cmds.modelEditor('modelPanel2', q=True, motionTrails=True)",
                        "cmds.modelEditor('modelPanel2', e=True, motionTrails=True)"};
  EXPECT_EQ(log(), preferences() + Lines{"cmds.ls(sl=True, long=True)"} + plugin_and_root(false) + playback_range() +
                       kClockRead + exists("vlx_ball_viz") + ball_trail() + exists("vlx_cube_viz") + cube_trail +
                       callbacks() + panels + exists("|rig|ball") + exists("|cube") +
                       Lines{"cmds.select(['|rig|ball', '|cube'], replace=True)"} +
                       message("Trail built for 2 object(s).") + Lines{"cmds.refresh()"});
  const std::vector<Vector> line = {{0, 0, 0}, {2, 0, 0}, {4, 0, 0}, {6, 0, 0}, {8, 0, 0}};
  EXPECT_EQ(*host->vectors(kBallShape, "points"), line);
  EXPECT_EQ(*host->vectors(kBallShape, "keyTimes"), (std::vector<Vector>{{1, 0, 0}, {5, 0, 0}}));
  EXPECT_EQ(host->attribute(kBallShape, "lineWidth"), host::Value(2.5));
  EXPECT_EQ(host->attribute(kBallShape, "showDots"), host::Value(true));
}

TEST_P(CreationContract, replaces_the_trail_that_an_object_has) {
  host->select({"|rig|ball"});
  create_trail();
  log();
  create_trail();
  const Lines panels = {"cmds.getPanel(type='modelPanel')",
                        "cmds.modelEditor('modelPanel1', q=True, motionTrails=True)",
                        "cmds.modelEditor('modelPanel2', q=True, motionTrails=True)"};
  EXPECT_EQ(log(), preferences() + Lines{"cmds.ls(sl=True, long=True)"} + plugin_and_root(true) + playback_range() +
                       kClockRead + exists("vlx_ball_viz") + Lines{"cmds.delete('vlx_ball_viz')"} + ball_trail() +
                       panels + exists("|rig|ball") + Lines{"cmds.select(['|rig|ball'], replace=True)"} +
                       message("Trail built for 1 object(s).") + Lines{"cmds.refresh()"});
  EXPECT_EQ(trail_count(), 1);
}

TEST_P(CreationContract, clears_the_trails_with_their_group_and_callbacks) {
  host->select({"|rig|ball"});
  create_trail();
  EXPECT_EQ(host->callback_count(), 3u);
  log();
  clear_trails();
  const Lines removals(3, "om.MMessage.removeCallback(...)");
  EXPECT_EQ(log(), removals + exists("vantorelixs_grp") + Lines{"cmds.delete('vantorelixs_grp')"} +
                       message("All trails cleared."));
  EXPECT_EQ(host->callback_count(), 0u);
  EXPECT_FALSE(has_any_trail());
  EXPECT_EQ(log(), Lines{"cmds.ls(type='vantorelix')"});
}

TEST_P(CreationContract, bakes_every_trail_into_a_curve_of_its_own) {
  host->select({"|rig|ball"});
  create_trail();
  log();
  convert_to_nurbs(3);
  const Lines dense = evaluation("1.0") + evaluation("2.0") + evaluation("3.0") + evaluation("4.0") + evaluation("5.0");
  const Lines conversion = Lines{"cmds.ls(sl=True, long=True)"} + exists("|rig|ball") + playback_range() +
                           fast_sampler("|rig|ball") + dense + key_times("|rig|ball") + evaluation("1.0") +
                           evaluation("5.0") + Lines{"cmds.curve(d=3, p=<5>, name='vlx_ball_curve')"};
  EXPECT_EQ(log(),
            conversion + Lines{"cmds.select(['vlx_ball_curve'])"} + message("Created 1 standalone NURBS curve(s)."));
  host->select({"|rig|ball"});
  convert_to_nurbs(3);
  EXPECT_EQ(log(),
            conversion + Lines{"cmds.select(['vlx_ball_curve1'])"} + message("Created 1 standalone NURBS curve(s)."));
}

VANTORELIX_OVER_EVERY_HOST(CreationContract);

}  // namespace
}  // namespace vantorelix::contract
