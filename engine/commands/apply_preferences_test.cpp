#include "engine/commands/apply_preferences.h"

#include <gmock/gmock.h>

#include "engine/state/state.h"
#include "host/error.h"
#include "tests/support/engine_test.h"
#include "tests/support/trail_scene.h"

namespace vantorelix {
namespace {

using support::Lines;
using support::together;
using ::testing::IsEmpty;

const std::string kShape = "|vantorelixs_grp|vlx_ball_viz|vlx_ball_vizShape";

class ApplyPreferencesTest : public support::EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    settings = support::add_trail(fake, "ball");
    fake.options = {{"Vantorelix_lineWidth", 4.0},    {"Vantorelix_pointSize", 3.0}, {"Vantorelix_showLine", 0},
                    {"Vantorelix_showDots", 1},       {"Vantorelix_xrayMode", 0},    {"Vantorelix_colorMode", 2},
                    {"Vantorelix_samplesPerFrame", 4}};
  }
  std::shared_ptr<Settings> settings;
};

Lines preference(const std::string& name) {
  return {"cmds.optionVar(exists='Vantorelix_" + name + "')", "cmds.optionVar(q='Vantorelix_" + name + "')"};
}

const Lines kDisplayPreferences = together({preference("lineWidth"), preference("pointSize"), preference("showLine"),
                                            preference("showDots"), preference("xrayMode"), preference("colorMode")});
const Lines kDisplay = {
    "cmds.setAttr('vlx_ball_vizShape.lineWidth', 4.0)",  "cmds.setAttr('vlx_ball_vizShape.pointSize', 3.0)",
    "cmds.setAttr('vlx_ball_vizShape.showLine', False)", "cmds.setAttr('vlx_ball_vizShape.showDots', True)",
    "cmds.setAttr('vlx_ball_vizShape.xrayMode', False)", "cmds.setAttr('vlx_ball_vizShape.colorMode', 2)"};

TEST_F(ApplyPreferencesTest, DisplayPreferencesReachEveryShapeInAFixedOrder) {
  apply_prefs_to_existing_trails();
  EXPECT_EQ(recorder.log(),
            together({{"cmds.ls(type='vantorelix')"}, kDisplayPreferences, kDisplay, {"cmds.refresh()"}}));
  EXPECT_EQ(settings->at("samples_per_frame"), host::Value(1));
  EXPECT_THAT(fake.deferred, IsEmpty());
}

TEST_F(ApplyPreferencesTest, TheDensityGoesToRegistryAndNodesAtOnceAndSchedulesTheRest) {
  apply_prefs_to_existing_trails(true);
  EXPECT_EQ(recorder.log(),
            together({{"cmds.ls(type='vantorelix')"},
                      kDisplayPreferences,
                      kDisplay,
                      preference("samplesPerFrame"),
                      {"cmds.listRelatives('vlx_ball_viz', s=True, fullPath=True)",
                       "cmds.setAttr('" + kShape + ".frameStep', 0.25)", "cmds.playbackOptions(q=True, min=True)",
                       "cmds.setAttr('" + kShape + ".startFrame', 1.0)", "om.MFileIO.isReadingFile()",
                       "om.MFileIO.isWritingFile()", "om.MFileIO.isOpeningFile()", "om.MFileIO.isNewingFile()",
                       "time.time()", "cmds.about(batch=True)", "cmds.evalDeferred(_rebuild_step, lowestPriority=True)",
                       "cmds.refresh()"}}));
  EXPECT_EQ(settings->at("samples_per_frame"), host::Value(4));
  EXPECT_EQ(support::pushed(fake, "ball", "points"), nullptr);  // positions follow after the debounce
}

TEST_F(ApplyPreferencesTest, ASceneWithoutTrailsIsOnlyRedrawn) {
  fake.remove("vantorelixs_grp");
  _REGISTRY.clear();
  apply_prefs_to_existing_trails(true);
  EXPECT_EQ(recorder.log(), together({{"cmds.ls(type='vantorelix')"}, kDisplayPreferences, {"cmds.refresh()"}}));
}

TEST_F(ApplyPreferencesTest, RegisteredTrailsMissingFromTheSceneStillTakeTheDensity) {
  fake.remove("vantorelixs_grp");
  apply_prefs_to_existing_trails(true);
  EXPECT_EQ(settings->at("samples_per_frame"), host::Value(4));
  EXPECT_EQ(recorder.count("cmds.setAttr("), 0u);
  EXPECT_TRUE(_PENDING);
}

TEST_F(ApplyPreferencesTest, ATransformWithoutAShapeTakesTheDensityInTheRegistryOnly) {
  fake.remove(kShape);
  apply_prefs_to_existing_trails(true);
  EXPECT_EQ(settings->at("samples_per_frame"), host::Value(4));
  EXPECT_EQ(recorder.count("cmds.playbackOptions("), 0u);
}

TEST_F(ApplyPreferencesTest, TrailsUnknownToTheRegistryAreDrawnAlikeWithoutARebuild) {
  _REGISTRY.clear();
  apply_prefs_to_existing_trails(true);
  EXPECT_EQ(support::viz_shape(fake, "ball").attributes["lineWidth"], host::Value(4.0));
  EXPECT_EQ(recorder.count("cmds.optionVar(exists='Vantorelix_samplesPerFrame')"), 0u);
  EXPECT_FALSE(_PENDING);
}

TEST_F(ApplyPreferencesTest, AnAttributeThatRefusesDoesNotStopTheOthers) {
  support::add_trail(fake, "cube");
  fake.refused = {"vlx_ball_vizShape.xrayMode"};
  recorder.fail_line("cmds.refresh(");
  apply_prefs_to_existing_trails();
  EXPECT_EQ(support::viz_shape(fake, "ball").attributes["colorMode"], host::Value(2));
  EXPECT_EQ(support::viz_shape(fake, "cube").attributes["xrayMode"], host::Value(false));
}

TEST_F(ApplyPreferencesTest, AFailedListOfShapesReachesTheCaller) {
  recorder.fail_line("cmds.ls(");
  EXPECT_THROW(apply_prefs_to_existing_trails(), host::Error);
}

}  // namespace
}  // namespace vantorelix
