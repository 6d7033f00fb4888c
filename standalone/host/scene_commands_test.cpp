#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "host/error.h"
#include "standalone/host/host.h"

namespace vantorelix::standalone {
namespace {

using host::Error;
using host::ErrorKind;
using host::Value;
using testing::ElementsAre;
using testing::IsEmpty;
using Names = std::vector<std::string>;

// Two arms, each with a wrist: "wrist" alone is ambiguous.
class SceneCommands : public testing::Test {
 protected:
  SceneCommands() {
    Scene& scene = host.scene();
    left = scene.nodes.create("transform", "left");
    right = scene.nodes.create("transform", "right");
    left_wrist = scene.nodes.create("joint", "wrist", left);
    right_wrist = scene.nodes.create("joint", "wrist", right);
  }
  host::CommandLayer& cmds() { return host.cmds(); }

  Host host{Scene()};
  NodeId left, right, left_wrist, right_wrist;
};

// "kind: text" of the error that `call` throws.
std::string error_of(const std::function<void()>& call) {
  try {
    call();
  } catch (const Error& error) {
    const char* kind = error.kind() == ErrorKind::value  ? "value"
                       : error.kind() == ErrorKind::type ? "type"
                                                         : "runtime";
    return std::string(kind) + ": " + error.what();
  }
  return "no error";
}

TEST_F(SceneCommands, list_the_selection_by_full_path_in_the_order_of_selecting) {
  cmds().select({"right|wrist", "left"});
  EXPECT_THAT(cmds().ls_selection(), ElementsAre("|right|wrist", "|left"));
  cmds().rename("right", "starboard");
  EXPECT_THAT(cmds().ls_selection(), ElementsAre("|starboard|wrist", "|left"));
  cmds().select_replace({"left"});
  EXPECT_THAT(cmds().ls_selection(), ElementsAre("|left"));
  cmds().select_clear();
  EXPECT_THAT(cmds().ls_selection(), IsEmpty());
}

TEST_F(SceneCommands, drop_deleted_nodes_from_the_selection) {
  cmds().select({"right|wrist", "left"});
  cmds().delete_("right");
  EXPECT_THAT(cmds().ls_selection(), ElementsAre("|left"));
  EXPECT_THAT(host.selection(), ElementsAre(left));
}

TEST_F(SceneCommands, keep_the_selection_when_a_name_is_wrong) {
  cmds().select({"left"});
  EXPECT_EQ(error_of([&] { cmds().select({"right", "nobody"}); }), "value: No object matches name: nobody");
  EXPECT_EQ(error_of([&] { cmds().select({"wrist"}); }), "value: More than one object matches name: wrist");
  EXPECT_THAT(cmds().ls_selection(), ElementsAre("|left"));
}

TEST_F(SceneCommands, list_a_type_by_shortest_unique_names) {
  EXPECT_THAT(cmds().ls_type("joint"), ElementsAre("left|wrist", "right|wrist"));
  EXPECT_THAT(cmds().ls_type("transform"), ElementsAre("left", "right", "left|wrist", "right|wrist"));
  EXPECT_THAT(cmds().ls_type("vantorelix"), IsEmpty());
  EXPECT_THAT(cmds().ls_type("unheard_of"), IsEmpty());
}

TEST_F(SceneCommands, say_whether_a_name_or_an_attribute_exists) {
  EXPECT_TRUE(cmds().objExists("left"));
  EXPECT_TRUE(cmds().objExists("|left|wrist"));
  EXPECT_TRUE(cmds().objExists("wrist")) << "ambiguous names exist";
  EXPECT_TRUE(cmds().objExists("left.translateX"));
  EXPECT_FALSE(cmds().objExists("left.unheardOf"));
  EXPECT_FALSE(cmds().objExists("nobody"));
  EXPECT_FALSE(cmds().objExists(""));
}

TEST_F(SceneCommands, give_parent_and_shapes_by_full_path) {
  EXPECT_THAT(cmds().listRelatives_parent("left|wrist"), ElementsAre("|left"));
  EXPECT_THAT(cmds().listRelatives_parent("left"), IsEmpty());
  const std::string shape = cmds().createNode("locator", "markShape");
  EXPECT_EQ(shape, "markShape");
  EXPECT_THAT(cmds().listRelatives_parent(shape), ElementsAre("|locator1"));
  EXPECT_THAT(cmds().listRelatives_shapes("locator1"), ElementsAre("|locator1|markShape"));
  EXPECT_THAT(cmds().listRelatives_shapes("left"), IsEmpty()) << "a child joint is not a shape";
  EXPECT_EQ(error_of([&] { cmds().listRelatives_shapes("nobody"); }), "value: No object matches name: nobody");
  EXPECT_EQ(error_of([&] { cmds().listRelatives_parent("wrist"); }), "value: More than one object matches name: wrist");
}

TEST_F(SceneCommands, make_a_node_select_it_and_return_its_unique_name) {
  EXPECT_EQ(cmds().createNode("transform", "left"), "left1");
  EXPECT_THAT(cmds().ls_selection(), ElementsAre("|left1"));
  EXPECT_EQ(error_of([&] { cmds().createNode("unheard_of", "x"); }), "runtime: Unknown object type: unheard_of");
  EXPECT_FALSE(cmds().objExists("x"));
}

TEST_F(SceneCommands, make_the_viz_node_with_all_its_attributes) {
  cmds().createNode("vantorelix", "vlx_ball_vizShape");
  const Scene& scene = host.scene();
  const NodeId shape = scene.names.find("vlx_ball_vizShape");
  ASSERT_NE(shape, kNoNode);
  EXPECT_EQ(scene.names.long_name(shape), "|vantorelix1|vlx_ball_vizShape");
  for (const char* name : {"startFrame", "frameStep", "lineWidth", "pointSize"})
    EXPECT_TRUE(scene.attributes.value(shape, name).as_float()) << name;
  for (const char* name : {"showLine", "showDots", "xrayMode"})
    EXPECT_TRUE(scene.attributes.value(shape, name).as_bool()) << name;
  EXPECT_TRUE(scene.attributes.value(shape, "colorMode").as_int());
  EXPECT_EQ(scene.attributes.value(shape, "startFrame"), host::Value(1.0));
}

TEST_F(SceneCommands, rename_and_return_the_name_that_the_node_got) {
  EXPECT_EQ(cmds().rename("left", "port"), "port");
  EXPECT_EQ(cmds().rename("port", "right"), "right1");
  EXPECT_EQ(error_of([&] { cmds().rename("nobody", "x"); }), "value: No object matches name: nobody");
}

TEST_F(SceneCommands, move_a_node_below_another) {
  cmds().group_empty("home");
  cmds().parent("left", "home");
  EXPECT_THAT(cmds().listRelatives_parent("left"), ElementsAre("|home"));
  EXPECT_NE(error_of([&] { cmds().parent("home", "left"); }), "no error") << "a node below itself";
  EXPECT_EQ(error_of([&] { cmds().parent("left", "nobody"); }), "value: No object matches name: nobody");
}

TEST_F(SceneCommands, delete_a_node_with_all_below_it) {
  cmds().delete_("left");
  EXPECT_FALSE(cmds().objExists("left"));
  EXPECT_THAT(cmds().ls_type("joint"), ElementsAre("wrist"));
  EXPECT_EQ(error_of([&] { cmds().delete_("left"); }), "value: No object matches name: left");
}

TEST_F(SceneCommands, make_curves_with_a_shape_each_and_select_the_last) {
  const std::vector<Vector> points = {{0, 0, 0}, {1, 0, 0}, {2, 1, 0}, {3, 1, 0}};
  EXPECT_EQ(cmds().curve(3, points, "path"), "path");
  EXPECT_EQ(cmds().curve(1, points, "path"), "path1");
  EXPECT_THAT(cmds().listRelatives_shapes("path"), ElementsAre("|path|curveShape1"));
  EXPECT_THAT(cmds().listRelatives_shapes("path1"), ElementsAre("|path1|curveShape2"));
  EXPECT_THAT(cmds().ls_selection(), ElementsAre("|path1"));
  EXPECT_EQ(host.scene().attributes.curve_points(host.scene().names.find("curveShape1")), points);
  EXPECT_EQ(host.scene().attributes.curve_degree(host.scene().names.find("curveShape2")), 1);
}

TEST_F(SceneCommands, refuse_a_curve_of_too_few_points_or_no_degree) {
  const std::vector<Vector> points(3);
  EXPECT_EQ(error_of([&] { cmds().curve(3, points, "path"); }),
            "runtime: curve: A curve of degree 3 needs at least degree+1 points.");
  EXPECT_EQ(error_of([&] { cmds().curve(0, points, "path"); }), "runtime: curve: The degree must be at least 1.");
  EXPECT_EQ(error_of([&] { cmds().curve("3", points, "path"); }),
            "type: Invalid arguments for flag 'd'. Expected int, got '3'");
  EXPECT_FALSE(cmds().objExists("path"));
}

TEST_F(SceneCommands, read_world_and_local_matrices_at_a_time) {
  Scene& scene = host.scene();
  scene.attributes.set_channel(left, Channel::translateX, 10.0);
  scene.curves.set_key(left_wrist, Channel::translateY, 1.0, 0.0);
  scene.curves.set_key(left_wrist, Channel::translateY, 5.0, 8.0);
  EXPECT_THAT(cmds().getAttr_matrix("left|wrist.worldMatrix[0]", 5.0),
              ElementsAre(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 10, 8, 0, 1));
  EXPECT_THAT(cmds().getAttr_matrix("left|wrist.matrix", 5.0),
              ElementsAre(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 8, 0, 1));
  EXPECT_EQ(error_of([&] { cmds().getAttr_matrix("wrist.worldMatrix[0]", 1.0); }),
            "value: More than one object matches name: wrist.worldMatrix[0]");
  EXPECT_EQ(error_of([&] { cmds().getAttr_matrix("nobody.worldMatrix[0]", 1.0); }),
            "value: No object matches name: nobody.worldMatrix[0]");
  EXPECT_EQ(error_of([&] { cmds().getAttr_matrix("left.unheardOf", 1.0); }),
            "value: No object matches name: left.unheardOf");
  EXPECT_EQ(error_of([&] { cmds().getAttr_matrix("left", 1.0); }), "runtime: No attribute was specified.");
}

TEST_F(SceneCommands, convert_values_to_the_types_of_the_viz_node) {
  const std::string shape = cmds().createNode("vantorelix", "vShape");
  const NodeId node = host.scene().names.find(shape);
  const auto after = [&](const char* attribute, const Value& value) {
    cmds().setAttr(shape + "." + attribute, value);
    return host.scene().attributes.value(node, attribute);
  };
  EXPECT_EQ(after("lineWidth", 3), Value(3.0));
  EXPECT_EQ(after("lineWidth", true), Value(1.0));
  EXPECT_EQ(after("colorMode", 2.9), Value(2));
  EXPECT_EQ(after("colorMode", 99), Value(99));
  EXPECT_EQ(after("showLine", 0), Value(false));
  EXPECT_EQ(after("showLine", 2), Value(true));
  EXPECT_EQ(error_of([&] { after("lineWidth", "wide"); }),
            "runtime: setAttr: Error reading data element number 1: wide");
  EXPECT_EQ(error_of([&] { after("lineWidth", {}); }), "runtime: setAttr: No values given.");
  EXPECT_EQ(error_of([&] { after("unheardOf", 1); }), "value: No object matches name: vShape.unheardOf");
  EXPECT_EQ(host.scene().attributes.value(node, "lineWidth"), Value(1.0));
}

TEST_F(SceneCommands, refuse_to_set_a_locked_attribute) {
  const std::string shape = cmds().createNode("vantorelix", "vShape");
  host.scene().attributes.lock(host.scene().names.find(shape), "xrayMode", true);
  EXPECT_THAT(error_of([&] { cmds().setAttr(shape + ".xrayMode", false); }),
              testing::HasSubstr("is locked or connected and cannot be modified."));
  cmds().setAttr(shape + ".colorMode", 1);
  EXPECT_EQ(host.scene().attributes.value(host.scene().names.find(shape), "colorMode"), Value(1));
}

TEST_F(SceneCommands, set_channels_and_display_attributes_of_a_transform) {
  cmds().setAttr("left.translateX", 4);
  EXPECT_EQ(host.scene().attributes.channel(left, Channel::translateX), 4.0);
  cmds().setAttr("left.overrideEnabled", 1);
  cmds().setAttr("left.overrideDisplayType", 2);
  EXPECT_EQ(host.scene().attributes.value(left, "overrideEnabled"), Value(true));
  EXPECT_EQ(host.scene().attributes.value(left, "overrideDisplayType"), Value(2));
  EXPECT_EQ(error_of([&] { cmds().setAttr("left.unheardOf", 1); }), "value: No object matches name: left.unheardOf");
}

TEST_F(SceneCommands, give_key_times_curve_by_curve) {
  Scene& scene = host.scene();
  scene.curves.set_key(left, Channel::translateY, 3.0, 0.0);
  scene.curves.set_key(left, Channel::translateY, 7.0, 0.0);
  scene.curves.set_key(left, Channel::translateX, 3.0, 0.0);
  EXPECT_THAT(cmds().keyframe_times("left"), ElementsAre(3.0, 7.0, 3.0));
  EXPECT_THAT(cmds().keyframe_times("right"), IsEmpty());
  EXPECT_EQ(error_of([&] { cmds().keyframe_times("nobody"); }), "value: No object matches name: nobody");
}

TEST_F(SceneCommands, give_the_playback_range_and_the_current_time) {
  host.scene().settings.set_playback_range(5.0, 12.5);
  host.scene().settings.set_current_time(7.0);
  EXPECT_EQ(cmds().playbackOptions_min(), 5.0);
  EXPECT_EQ(cmds().playbackOptions_max(), 12.5);
  EXPECT_EQ(cmds().currentTime(), 7.0);
  EXPECT_EQ(host.oma().currentTime(), 7.0);
}

}  // namespace
}  // namespace vantorelix::standalone
