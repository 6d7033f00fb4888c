#include "engine/commands/create.h"
#include "engine/commands/display.h"
#include "engine/commands/entry.h"
#include "engine/state/preferences.h"
#include "tests/contract/contract_test.h"

namespace vantorelix::contract {
namespace {

class CommandsContract : public ContractTest {};

Lines stored(const std::string& flag, const std::string& name, const std::string& value) {
  return {"cmds.optionVar(" + flag + "=('Vantorelix_" + name + "', " + value + "))"};
}
Lines asked(const std::string& name) {
  return option_missing(name) + Lines{"cmds.optionVar(q='Vantorelix_" + name + "')"};
}

TEST_P(CommandsContract, write_each_preference_under_its_key_and_type) {
  _set_pref_samples(2.9);
  _set_pref_line_width(3);
  _set_pref_point_size(0.5);
  _set_pref_show_line({});
  _set_pref_show_dots("no");
  _set_pref_xray(true);
  _set_pref_color_mode("3");
  EXPECT_EQ(log(), stored("iv", "samplesPerFrame", "2") + stored("fv", "lineWidth", "3.0") +
                       stored("fv", "pointSize", "0.5") + stored("iv", "showLine", "0") +
                       stored("iv", "showDots", "1") + stored("iv", "xrayMode", "1") + stored("iv", "colorMode", "3"));
}

TEST_P(CommandsContract, read_a_preference_back_from_the_host_each_time) {
  _set_pref_samples(4);
  _set_pref_line_width(1.5);
  log();
  EXPECT_EQ(_get_pref_samples(), 4);
  EXPECT_EQ(_get_pref_line_width(), 1.5);
  EXPECT_TRUE(_get_pref_xray());
  EXPECT_EQ(log(), asked("samplesPerFrame") + asked("lineWidth") + option_missing("xrayMode"));
}

TEST_P(CommandsContract, colour_every_trail_after_storing_the_mode) {
  host->select({"|rig|ball"});
  create_trail();
  log();
  set_color_mode(1);
  EXPECT_EQ(log(), stored("iv", "colorMode", "1") + Lines{"cmds.ls(type='vantorelix')"} +
                       set_attribute("vlx_ball_vizShape", "colorMode", "1") + Lines{"cmds.refresh()"} +
                       message("Color mode -> Spacing"));
  EXPECT_EQ(host->attribute(kBallShape, "colorMode"), host::Value(1));
}

TEST_P(CommandsContract, ghost_every_trail_by_the_stored_switch) {
  host->select({"|rig|ball"});
  create_trail();
  log();
  toggle_ghost();
  EXPECT_EQ(log(), option_missing("xrayMode") + stored("iv", "xrayMode", "0") + Lines{"cmds.ls(type='vantorelix')"} +
                       set_attribute("vlx_ball_vizShape", "xrayMode", "False") + Lines{"cmds.refresh()"} +
                       message("Ghost OFF on 1 trail(s)"));
  EXPECT_EQ(host->attribute(kBallShape, "xrayMode"), host::Value(false));
  toggle_ghost();
  EXPECT_EQ(log(), asked("xrayMode") + stored("iv", "xrayMode", "1") + Lines{"cmds.ls(type='vantorelix')"} +
                       set_attribute("vlx_ball_vizShape", "xrayMode", "True") + Lines{"cmds.refresh()"} +
                       message("Ghost ON on 1 trail(s)"));
}

TEST_P(CommandsContract, open_the_mini_menu_by_its_module) {
  int shown = 0;
  host->add_menu([&] { ++shown; });
  pellark_entry(" RMB ");
  EXPECT_EQ(log(), (Lines{"import Vantorelix", "hasattr(Vantorelix, 'show_trail_mini_menu')",
                          "Vantorelix.show_trail_mini_menu()"}));
  EXPECT_EQ(shown, 1);
}

TEST_P(CommandsContract, try_both_ways_to_a_menu_that_is_not_there) {
  EXPECT_FALSE(_open_menu());
  EXPECT_EQ(log(), (Lines{"import Vantorelix", "from Vantorelix import show_trail_mini_menu; show_trail_mini_menu()"}));
}

TEST_P(CommandsContract, call_a_menu_that_fails_a_second_time) {
  int shown = 0;
  host->add_menu([&] {
    ++shown;
    throw host::Error("no window");
  });
  EXPECT_FALSE(_open_menu());
  EXPECT_EQ(shown, 2);
}

TEST_P(CommandsContract, follow_the_gestures) {
  pellark_entry("lmb");
  EXPECT_THAT(log(), testing::Contains("cmds.ls(sl=True, long=True)"));
  pellark_entry("Shift_LMB");
  EXPECT_EQ(log(), exists("vantorelixs_grp") + message("All trails cleared."));
  pellark_entry("curve");
  EXPECT_EQ(log(), Lines{"cmds.ls(sl=True, long=True)"} + message("No trails to convert. Build a trail first."));
  pellark_entry("temperature");
  EXPECT_EQ(log(), stored("iv", "colorMode", "2") + Lines{"cmds.ls(type='vantorelix')"} + Lines{"cmds.refresh()"} +
                       message("Color mode -> Flow"));
}

VANTORELIX_OVER_EVERY_HOST(CommandsContract);

}  // namespace
}  // namespace vantorelix::contract
