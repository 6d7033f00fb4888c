#include "engine/commands/create.h"

#include <gmock/gmock.h>

#include "engine/rebuild/triggers.h"
#include "engine/sampling/position_sampling.h"
#include "host/error.h"
#include "tests/support/engine_test.h"
#include "tests/support/trail_scene.h"

namespace vantorelix {
namespace {

using support::Lines;
using support::pushed;
using support::together;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

// A selected ball with keys at both ends of frames 1 to 3, and a loaded plug-in.
class CreateTest : public support::EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    fake.loaded_plugins = {"Vantorelix_plugin"};
    fake.range_last = 3.0;
    add("ball");
  }
  void add(const std::string& name) {
    fake.add("|" + name).keys = {1.0, 3.0};
    fake.selection.push_back("|" + name);
  }
  // The foreground budget is spent by the very first evaluation.
  void spend_budget_at_once() { fake.advance_per_evaluation = 0.2; }
  host::Value message() { return fake.messages.back(); }
};

// --- the calls, stretch by stretch -----------------------------------------------------------------------------

const Lines kPreferences = {
    "cmds.optionVar(exists='Vantorelix_samplesPerFrame')", "cmds.optionVar(exists='Vantorelix_lineWidth')",
    "cmds.optionVar(exists='Vantorelix_pointSize')",       "cmds.optionVar(exists='Vantorelix_showLine')",
    "cmds.optionVar(exists='Vantorelix_showDots')",        "cmds.optionVar(exists='Vantorelix_xrayMode')",
    "cmds.optionVar(exists='Vantorelix_colorMode')"};
const Lines kSelectionAndPlugin = {"cmds.ls(sl=True, long=True)",
                                   "cmds.pluginInfo('Vantorelix_plugin', q=True, loaded=True)",
                                   "cmds.objExists('vantorelixs_grp')"};
const Lines kNewRoot = {"cmds.group(em=True, name='vantorelixs_grp')"};
const Lines kRangeAndDeadline = {
    "cmds.setAttr('vantorelixs_grp.overrideEnabled', 1)", "cmds.setAttr('vantorelixs_grp.overrideDisplayType', 2)",
    "cmds.playbackOptions(q=True, min=True)", "cmds.playbackOptions(q=True, max=True)", "time.time()"};
// Both ends, then the middle; the clock is not read after the first. The reading at the end is for the keys.
const Lines kAllSamplesAndKeys = {"plug.translation_at(1.0)",
                                  "plug.translation_at(3.0)",
                                  "time.time()",
                                  "plug.translation_at(2.0)",
                                  "time.time()",
                                  "time.time()"};
const Lines kTwoSamplesNoKeys = {"plug.translation_at(1.0)", "plug.translation_at(3.0)", "time.time()", "time.time()"};
const Lines kCallbacks = {"oma.MAnimMessage.addAnimCurveEditedCallback(_on_anim_edit)",
                          "oma.MAnimMessage.addAnimKeyframeEditedCallback(_on_anim_edit)",
                          "om.MDGMessage.addNodeRemovedCallback(_on_anim_edit, 'animCurve')"};
const Lines kSchedule = {"om.MFileIO.isReadingFile()",
                         "om.MFileIO.isWritingFile()",
                         "om.MFileIO.isOpeningFile()",
                         "om.MFileIO.isNewingFile()",
                         "time.time()",
                         "cmds.about(batch=True)",
                         "cmds.evalDeferred(_rebuild_step, lowestPriority=True)"};

Lines key_lines(const std::string& name) {
  return {"cmds.keyframe('|" + name + "', q=True, timeChange=True)", "plug.translation_at(1.0)",
          "plug.translation_at(3.0)"};
}
Lines exists(const std::string& name) { return {"cmds.objExists('vlx_" + name + "_viz')"}; }

Lines node_lines(const std::string& name, int samples, int keys) {
  const std::string viz = "vlx_" + name + "_viz";
  const std::string shape = "cmds.setAttr('|vantorelixs_grp|" + viz + "|" + viz + "Shape.";
  return together({{"cmds.createNode('vantorelix', name='" + viz + "Shape')",
                    "cmds.listRelatives('" + viz + "Shape', parent=True, fullPath=True)",
                    "cmds.rename('|" + viz + "', '" + viz + "')", "cmds.parent('" + viz + "', 'vantorelixs_grp')"},
                   support::push_lines(name, samples, keys),
                   {"cmds.listRelatives('" + viz + "', s=True, fullPath=True)", shape + "lineWidth', 2.5)",
                    shape + "pointSize', 6.0)", shape + "showLine', True)", shape + "showDots', True)",
                    shape + "xrayMode', True)", shape + "colorMode', 0)", "cmds.playbackOptions(q=True, min=True)",
                    shape + "startFrame', 1.0)", shape + "frameStep', 1.0)"}});
}

Lines end_lines(const Lines& sources, const std::string& message) {
  Lines lines = {"cmds.getPanel(type='modelPanel')"};
  std::string list;
  for (const std::string& source : sources) {
    lines.push_back("cmds.objExists('" + source + "')");
    list += (list.empty() ? "'" : ", '") + source + "'";
  }
  return together({lines,
                   {"cmds.select([" + list + "], replace=True)",
                    "cmds.inViewMessage(amg='" + message + "', pos='midCenter', fade=True, alpha=0.9)",
                    "print('[Vantorelix] " + message + "')", "cmds.refresh()"}});
}

TEST_F(CreateTest, OneCompleteTrailMakesTheseCalls) {
  create_trail();
  EXPECT_EQ(recorder.log(),
            together({kPreferences, kSelectionAndPlugin, kNewRoot, kRangeAndDeadline, exists("ball"),
                      support::fast_sampler_lines("ball"), kAllSamplesAndKeys, key_lines("ball"),
                      node_lines("ball", 3, 2), kCallbacks, end_lines({"|ball"}, "Trail built for 1 object(s).")}));
}

TEST_F(CreateTest, TwoIncompleteTrailsMakeTheseCalls) {
  add("cube");
  spend_budget_at_once();
  create_trail();
  EXPECT_EQ(
      recorder.log(),
      together({kPreferences, kSelectionAndPlugin, kNewRoot, kRangeAndDeadline,                                    //
                exists("ball"), support::fast_sampler_lines("ball"), kTwoSamplesNoKeys, node_lines("ball", 3, 0),  //
                exists("cube"), support::fast_sampler_lines("cube"), kTwoSamplesNoKeys, node_lines("cube", 3, 0),  //
                kCallbacks, kSchedule, end_lines({"|ball", "|cube"}, "Building trail for 2 object(s)...")}));
}

TEST_F(CreateTest, ReplacingATrailDeletesItFirstAndKeepsRootAndCallbacks) {
  create_trail();
  recorder.clear();
  create_trail();
  EXPECT_EQ(recorder.log(), together({kPreferences,
                                      kSelectionAndPlugin,
                                      kRangeAndDeadline,
                                      exists("ball"),
                                      {"cmds.delete('vlx_ball_viz')"},
                                      support::fast_sampler_lines("ball"),
                                      kAllSamplesAndKeys,
                                      key_lines("ball"),
                                      node_lines("ball", 3, 2),
                                      end_lines({"|ball"}, "Trail built for 1 object(s).")}));
  EXPECT_EQ(fake.ls_type("vantorelix").size(), 1u);
  EXPECT_EQ(_REGISTRY.size(), 1u);
}

// --- arguments and selection -----------------------------------------------------------------------------------

TEST_F(CreateTest, GivenArgumentsAreHandedOnAsTheyAreAndOnlyTheOthersComeFromPreferences) {
  create_trail(2.9, "wide", 7, 0, 1, "yes", 2.9);
  EXPECT_EQ(recorder.count("cmds.optionVar("), 0u);
  auto& attributes = support::viz_shape(fake, "ball").attributes;
  EXPECT_EQ(attributes["lineWidth"], host::Value("wide"));
  EXPECT_EQ(attributes["pointSize"], host::Value(7));
  EXPECT_EQ(attributes["showLine"], host::Value(0));
  EXPECT_EQ(attributes["showDots"], host::Value(1));
  EXPECT_EQ(attributes["xrayMode"], host::Value("yes"));
  EXPECT_EQ(attributes["colorMode"], host::Value(2));
  EXPECT_EQ(attributes["frameStep"], host::Value(0.5));
  EXPECT_EQ(_REGISTRY.at("vlx_ball_viz")->at("samples_per_frame"), host::Value(2.9));
}

TEST_F(CreateTest, AnEmptySelectionSaysSoAndDoesNothingElse) {
  fake.selection.clear();
  create_trail();
  EXPECT_EQ(recorder.log(), together({kPreferences,
                                      {"cmds.ls(sl=True, long=True)",
                                       "cmds.inViewMessage(amg='Select an animated object first.', pos='midCenter', "
                                       "fade=True, alpha=0.9)",
                                       "print('[Vantorelix] Select an animated object first.')"}}));
}

TEST_F(CreateTest, ADensityOfZeroSamplesOncePerFrameAndIsRegisteredAsZero) {
  create_trail(0);
  EXPECT_THAT(*pushed(fake, "ball", "points"), SizeIs(3));
  EXPECT_EQ(_REGISTRY.at("vlx_ball_viz")->at("samples_per_frame"), host::Value(0));
}

TEST_F(CreateTest, AnObjectThatIsGoneAtTheEndIsNotReselected) {
  add("cube");
  // Evaluation of the cube deletes the ball.
  fake.node("cube").motion = [this](double t) {
    if (fake.find("|ball")) fake.remove("|ball");
    return Vector{t, 0, 0};
  };
  create_trail();
  EXPECT_THAT(fake.selection, ElementsAre("|cube"));
}

TEST_F(CreateTest, WithNothingLeftToSelectTheSelectionIsCleared) {
  fake.node("ball").motion = [this, samples = 0](double t) mutable {
    if (++samples == 7) fake.remove("|ball");  // two checks, three samples, two keys
    return Vector{t, 0, 0};
  };
  create_trail();
  EXPECT_EQ(recorder.count("cmds.select(clear=True)"), 1u);
}

// --- samples, keys, reference ----------------------------------------------------------------------------------

TEST_F(CreateTest, ACompleteTrailHoldsExactSamplesKeysAndAReference) {
  create_trail();
  EXPECT_THAT(*pushed(fake, "ball", "points"), ElementsAre(Position{1, 0, 0}, Position{2, 0, 0}, Position{3, 0, 0}));
  EXPECT_THAT(*pushed(fake, "ball", "keyTimes"), ElementsAre(Vector{1, 0, 0}, Vector{3, 0, 0}));
  EXPECT_THAT(*pushed(fake, "ball", "keyColors"), ElementsAre(Colour{1, 1, 1}, Colour{1, 1, 1}));
  const Settings& settings = *_REGISTRY.at("vlx_ball_viz");
  EXPECT_EQ(settings.at("source"), host::Value("|ball"));
  EXPECT_EQ(settings.at("samples_per_frame"), host::Value(1));
  EXPECT_EQ(settings.at("ref"), host::Value::list({1.0}));
  EXPECT_FALSE(_PENDING);
  EXPECT_THAT(fake.deferred, IsEmpty());
  EXPECT_EQ(message(), host::Value("Trail built for 1 object(s)."));
}

TEST_F(CreateTest, AnIncompleteTrailIsInterpolatedAndHasNoReference) {
  fake.motion = [](const std::string&, double t) { return Vector{t * t, 0, 0}; };
  spend_budget_at_once();
  create_trail();
  // The spline through (1, 0, 0) and (9, 0, 0) alone: halfway in the middle.
  EXPECT_THAT(*pushed(fake, "ball", "points"), ElementsAre(Position{1, 0, 0}, Position{5, 0, 0}, Position{9, 0, 0}));
  EXPECT_THAT(*pushed(fake, "ball", "keyTimes"), IsEmpty());
  EXPECT_TRUE(_REGISTRY.at("vlx_ball_viz")->at("ref").is_none());
  EXPECT_TRUE(_PENDING);
  EXPECT_THAT(fake.deferred, SizeIs(1));
}

TEST_F(CreateTest, AllSamplesWithoutTimeForTheKeysKeepTheReferenceAndStillNeedFilling) {
  fake.range_last = 2.0;  // two samples, which are always taken
  spend_budget_at_once();
  create_trail();
  EXPECT_EQ(_REGISTRY.at("vlx_ball_viz")->at("ref"), host::Value::list({1.0}));
  EXPECT_EQ(recorder.count("cmds.keyframe("), 0u);
  EXPECT_TRUE(_PENDING);
}

TEST_F(CreateTest, LaterObjectsOfASpentBudgetGetTwoSamplesEach) {
  for (const char* name : {"b", "c", "d"}) add(name);
  fake.range_last = 100.0;
  fake.advance_per_evaluation = 0.015625;  // exact in doubles
  create_trail();
  // The tenth evaluation passes the deadline of 0.15; the first two are the check of the ball's sampler.
  EXPECT_EQ(fake.evaluations, (2u + 8u) + 3u * (2u + 2u));
  EXPECT_EQ(message(), host::Value("Building trail for 4 object(s)..."));
}

TEST_F(CreateTest, TheFirstHintNamesTheTwoSamplesThatAreTakenInAnyCase) {
  spend_budget_at_once();
  fake.range_last = 1000.0;
  create_trail();
  ASSERT_EQ(fake.hints.size(), 1u);
  EXPECT_EQ(fake.hints[0].times, (std::vector<double>{1.0, 1000.0}));
}

TEST_F(CreateTest, HintsNameEverySampleAndEveryKeyInTheOrderInWhichTheyAreTaken) {
  fake.range_last = 200.0;
  create_trail();
  std::vector<std::string> told;
  for (const auto& hint : fake.hints) {
    EXPECT_EQ(hint.evaluations, told.size() + 2) << "two check the sampler";
    EXPECT_LE(hint.times.size(), kExpectedAtOnce);
    for (const double t : hint.times) told.push_back("plug.translation_at(" + host::Value(t).repr() + ")");
  }
  Lines asked = recorder.log();
  std::erase_if(asked, [](const std::string& line) { return line.rfind("plug.translation_at(", 0) != 0; });
  EXPECT_EQ(told.size(), 202u);
  EXPECT_EQ(told, Lines(asked.begin() + 1, asked.end()));
}

TEST_F(CreateTest, AnObjectWithFewerThanTwoSamplesIsSkippedSilently) {
  fake.range_last = 1.0;
  create_trail();
  EXPECT_EQ(message(), host::Value("Trail built for 0 object(s)."));
  EXPECT_TRUE(_REGISTRY.empty());
  EXPECT_EQ(recorder.count("cmds.createNode("), 0u);
}

TEST_F(CreateTest, AnObjectThatIsSkippedHasLostItsFormerTrail) {
  create_trail();
  fake.range_last = 1.0;
  create_trail();
  EXPECT_TRUE(_REGISTRY.empty());
  EXPECT_THAT(fake.ls_type("vantorelix"), IsEmpty());
}

TEST_F(CreateTest, WithoutAFastSamplerTheSlowRoadOfEachObjectIsTaken) {
  add("cube");
  fake.context_offset = {1, 0, 0};
  create_trail();
  EXPECT_EQ(recorder.count("cmds.getAttr('|ball.worldMatrix[0]', time="), 6u);  // the check, samples, keys
  EXPECT_EQ(recorder.count("cmds.getAttr('|cube.worldMatrix[0]', time="), 6u);
  EXPECT_THAT(*pushed(fake, "cube", "points"), ElementsAre(Position{1, 0, 0}, Position{2, 0, 0}, Position{3, 0, 0}));
}

TEST_F(CreateTest, ObjectsOfOneShortNameShareAVizNameAndTheSecondReplacesTheFirst) {
  fake.add("|left|hand");
  fake.add("|right|hand");
  fake.selection = {"|left|hand", "|right|hand"};
  create_trail();
  EXPECT_EQ(_REGISTRY.size(), 1u);
  EXPECT_EQ(_REGISTRY.at("vlx_hand_viz")->at("source"), host::Value("|right|hand"));
  EXPECT_EQ(fake.ls_type("vantorelix").size(), 1u);
}

// --- failures --------------------------------------------------------------------------------------------------

TEST_F(CreateTest, AFailedNodeCreationLeavesTheTrailsBeforeIt) {
  add("cube");
  recorder.fail_line("cmds.createNode(", 2);
  EXPECT_THROW(create_trail(), host::Error);
  EXPECT_EQ(_REGISTRY.size(), 1u);
  EXPECT_TRUE(_REGISTRY.contains("vlx_ball_viz"));
  EXPECT_FALSE(_CB_ID);
}

TEST_F(CreateTest, XrayAndColourModeAreBestEffortAndTheOtherAttributesAreNot) {
  fake.refused = {"xrayMode"};
  create_trail({}, {}, {}, {}, {}, {}, "no number");
  EXPECT_EQ(_REGISTRY.size(), 1u);
  EXPECT_EQ(support::viz_shape(fake, "ball").attributes.count("colorMode"), 0u);
  fake.refused = {"showDots"};
  EXPECT_THROW(create_trail(), host::Error);
}

TEST_F(CreateTest, AnAbsurdRangeEndsAsAnOrdinaryError) {
  fake.range_last = 1e15;
  EXPECT_THROW(create_trail(), host::Error);
}

TEST_F(CreateTest, APluginThatCannotBeLoadedShowsWhenTheNodeIsMade) {
  fake.loaded_plugins.clear();
  fake.node_types = {"transform"};
  fake.on_load_plugin = [](const std::string&) { throw host::Error("broken"); };
  recorder.fail_line("cmds.internalVar(");  // the user's folder: no files are touched
  EXPECT_THROW(create_trail(), host::Error);
}

// --- root and panels -------------------------------------------------------------------------------------------

TEST_F(CreateTest, TheRootIsMadeOnceAndItsDisplayIsBestEffort) {
  recorder.fail_line("cmds.setAttr('vantorelixs_grp.overrideEnabled'");
  EXPECT_EQ(_ensure_root(), "vantorelixs_grp");
  EXPECT_EQ(recorder.count("cmds.setAttr('vantorelixs_grp.overrideDisplayType'"), 0u);
  EXPECT_EQ(_ensure_root(), "vantorelixs_grp");
  EXPECT_EQ(recorder.count("cmds.group("), 1u);
}

TEST_F(CreateTest, TrailDisplayIsSwitchedOnInEveryPanelWhereItIsOff) {
  fake.panels = {{"one", {{"motionTrails", true}}}, {"two"}, {"three"}};
  recorder.fail_line("cmds.modelEditor('two'");
  _ensure_trails_visible();
  EXPECT_THAT(recorder.log(),
              ElementsAre("cmds.getPanel(type='modelPanel')", "cmds.modelEditor('one', q=True, motionTrails=True)",
                          "cmds.modelEditor('two', q=True, motionTrails=True)",
                          "cmds.modelEditor('three', q=True, motionTrails=True)",
                          "cmds.modelEditor('three', e=True, motionTrails=True)"));
  recorder.fail_line("cmds.getPanel(");
  EXPECT_NO_THROW(_ensure_trails_visible());
}

}  // namespace
}  // namespace vantorelix
