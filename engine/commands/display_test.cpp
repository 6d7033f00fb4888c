#include "engine/commands/display.h"

#include <gmock/gmock.h>

#include "engine/state/constants.h"
#include "host/error.h"
#include "tests/support/engine_test.h"

namespace vantorelix {
namespace {

using support::EngineTest;
using testing::ElementsAre;
using testing::IsEmpty;

class Display : public EngineTest {
 protected:
  void add_trails() {
    fake.add("|vantorelixs_grp|vlx_a_viz|vlx_a_vizShape", NODE_TYPE);
    fake.add("|elsewhere|vlx_b_vizShape", NODE_TYPE);
  }
  host::Value on_a(const std::string& attribute) { return fake.node("vlx_a_vizShape").attributes[attribute]; }
  host::Value on_b(const std::string& attribute) { return fake.node("vlx_b_vizShape").attributes[attribute]; }
};

TEST_F(Display, TheColourModeIsStoredThenWrittenToEveryTrailThenRedrawnThenReported) {
  add_trails();
  set_color_mode(1);
  EXPECT_THAT(recorder.log(),
              ElementsAre("cmds.optionVar(iv=('Vantorelix_colorMode', 1))", "cmds.ls(type='vantorelix')",
                          "cmds.setAttr('vlx_a_vizShape.colorMode', 1)", "cmds.setAttr('vlx_b_vizShape.colorMode', 1)",
                          "cmds.refresh()",
                          "cmds.inViewMessage(amg='Color mode -> Spacing', pos='midCenter', fade=True, alpha=0.9)",
                          "print('[Vantorelix] Color mode -> Spacing')"));
}

TEST_F(Display, TheColourModeIsReportedByItsLabelOrAsItWasPassed) {
  const std::pair<host::Value, std::string> cases[] = {{0, "Standard"}, {1, "Spacing"}, {2, "Flow"},    {3, "Beats"},
                                                       {5, "5"},        {-1, "-1"},     {"3", "Beats"}, {7.0, "7.0"},
                                                       {2.9, "Flow"},   {" 8 ", " 8 "}};
  for (const auto& [mode, label] : cases) {
    set_color_mode(mode);
    EXPECT_EQ(fake.messages.back(), host::Value("Color mode -> " + label));
  }
}

TEST_F(Display, AnUnknownColourModeIsStoredAndWrittenAsItIs) {
  add_trails();
  set_color_mode(5);
  EXPECT_EQ(fake.options[OPT_COLOR_MODE], host::Value(5));
  EXPECT_EQ(on_a("colorMode"), host::Value(5));
  EXPECT_EQ(on_b("colorMode"), host::Value(5));
  set_color_mode("3");
  EXPECT_EQ(on_a("colorMode"), host::Value(3));
}

TEST_F(Display, AColourModeThatIsNoNumberFailsBeforeAnythingIsWritten) {
  EXPECT_THROW(set_color_mode("red"), host::Error);
  EXPECT_THROW(set_color_mode({}), host::Error);
  EXPECT_THAT(recorder.log(), IsEmpty());
}

TEST_F(Display, ATrailThatRefusesTheColourModeIsSkipped) {
  add_trails();
  fake.refused = {"vlx_a_vizShape.colorMode"};
  set_color_mode(2);
  EXPECT_EQ(on_b("colorMode"), host::Value(2));
  EXPECT_EQ(fake.messages.back(), host::Value("Color mode -> Flow"));
}

TEST_F(Display, GhostIsOnUnlessToldOtherwise) {
  add_trails();
  set_ghost();
  EXPECT_THAT(recorder.log(),
              ElementsAre("cmds.optionVar(iv=('Vantorelix_xrayMode', 1))", "cmds.ls(type='vantorelix')",
                          "cmds.setAttr('vlx_a_vizShape.xrayMode', True)",
                          "cmds.setAttr('vlx_b_vizShape.xrayMode', True)", "cmds.refresh()",
                          "cmds.inViewMessage(amg='Ghost ON on 2 trail(s)', pos='midCenter', fade=True, alpha=0.9)",
                          "print('[Vantorelix] Ghost ON on 2 trail(s)')"));
}

TEST_F(Display, GhostFollowsTruthAndCountsTheTrailsItReached) {
  add_trails();
  fake.refused = {"vlx_b_vizShape.xrayMode"};
  set_ghost(0);
  EXPECT_EQ(fake.messages.back(), host::Value("Ghost OFF on 1 trail(s)"));
  EXPECT_EQ(on_a("xrayMode"), host::Value(false));
  set_ghost("no");
  EXPECT_EQ(fake.messages.back(), host::Value("Ghost ON on 1 trail(s)"));
}

TEST_F(Display, WithoutTrailsTheGhostPreferenceIsStillStoredAndReported) {
  set_ghost(false);
  EXPECT_EQ(fake.options[OPT_XRAY], host::Value(0));
  EXPECT_EQ(fake.refreshes, 1u);
  EXPECT_EQ(fake.messages.back(), host::Value("Ghost OFF on 0 trail(s)"));
}

TEST_F(Display, TogglingTwiceRestoresPreferenceAndTrails) {
  add_trails();
  set_ghost(true);
  toggle_ghost();
  EXPECT_EQ(fake.options[OPT_XRAY], host::Value(0));
  EXPECT_EQ(on_a("xrayMode"), host::Value(false));
  toggle_ghost();
  EXPECT_EQ(fake.options[OPT_XRAY], host::Value(1));
  EXPECT_EQ(on_a("xrayMode"), host::Value(true));
  EXPECT_EQ(on_b("xrayMode"), host::Value(true));
}

TEST_F(Display, TogglingFollowsThePreferenceNotTheNodes) {
  add_trails();
  fake.node("vlx_a_vizShape").attributes["xrayMode"] = false;  // by hand
  toggle_ghost();                                              // on by default, so off
  EXPECT_EQ(on_a("xrayMode"), host::Value(false));
  EXPECT_EQ(fake.messages.back(), host::Value("Ghost OFF on 2 trail(s)"));
}

TEST_F(Display, FailuresOutsideTheTrailsReachTheCaller) {
  recorder.fail_line("cmds.ls");
  EXPECT_THROW(set_color_mode(1), host::Error);
  recorder.stop_failing();
  recorder.fail_line("cmds.refresh");
  EXPECT_THROW(set_ghost(), host::Error);
  EXPECT_THAT(fake.messages, IsEmpty());
}

}  // namespace
}  // namespace vantorelix
