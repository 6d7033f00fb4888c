#include "engine/commands/entry.h"

#include <gmock/gmock.h>

#include "engine/state/constants.h"
#include "host/error.h"
#include "tests/support/engine_test.h"

// More than one argument cannot be tried here: it does not compile.

namespace vantorelix {
namespace {

using support::EngineTest;
using testing::ElementsAre;
using testing::IsEmpty;

// What each command can be told by: its message on an empty scene, or the import of the front end.
const std::string kMenu = "import Vantorelix";
const std::string kCreate = "Select an animated object first.";
const std::string kClear = "All trails cleared.";
const std::string kNurbs = "No trails to convert. Build a trail first.";
const std::string kGhost = "Ghost OFF on 0 trail(s)";

class Entry : public EngineTest {
 protected:
  // What the one command that ran left: its messages, and the import if the menu was asked for.
  std::vector<std::string> commands_of(const host::Value& action) {
    fake.messages.clear();
    fake.options.clear();
    recorder.clear();
    pellark_entry(action);
    std::vector<std::string> commands;
    for (const host::Value& message : fake.messages) commands.push_back(message.text());
    if (recorder.count(kMenu) > 0) commands.push_back(kMenu);
    return commands;
  }

  void install_menu(std::function<void()> body) {
    fake.modules["Vantorelix"]["show_trail_mini_menu"] = std::move(body);
  }
};

TEST_F(Entry, EveryActionRunsItsOneCommand) {
  const std::pair<const char*, std::string> cases[] = {
      {"rmb", kMenu},
      {"mouse2", kMenu},
      {"mouse3", kMenu},
      {"right", kMenu},
      {"ctrl_rmb", kGhost},
      {"control_rmb", kGhost},
      {"ctrl_lmb", kNurbs},
      {"control_lmb", kNurbs},
      {"lmb", kCreate},
      {"mouse1", kCreate},
      {"left", kCreate},
      {"shift_lmb", kClear},
      {"clear", kClear},
      {"delete", kClear},
      {"nurbs", kNurbs},
      {"curve", kNurbs},
      {"ghost", kGhost},
      {"xray", kGhost},
      {"standard", "Color mode -> Standard"},
      {"spacing", "Color mode -> Spacing"},
      {"flow", "Color mode -> Flow"},
      {"pastfuture", "Color mode -> Flow"},
      {"past_future", "Color mode -> Flow"},
      {"temperature", "Color mode -> Flow"},
      {"beats", "Color mode -> Beats"},
      {"shift_rmb", kMenu},  // in no group
      {"alt_lmb", kMenu},
      {"", kMenu},
      {"   ", kMenu},
  };
  for (const auto& [action, command] : cases) EXPECT_THAT(commands_of(action), ElementsAre(command)) << action;
  EXPECT_THAT(commands_of({}), ElementsAre(kMenu));
}

TEST_F(Entry, CaseAndSurroundingBlanksDoNotMatter) {
  EXPECT_THAT(commands_of("  Ctrl_LMB\n"), ElementsAre(kNurbs));
  EXPECT_THAT(commands_of("\tCLEAR "), ElementsAre(kClear));
  EXPECT_THAT(commands_of("ctrl lmb"), ElementsAre(kMenu));
}

TEST_F(Entry, APlainClickBuildsStandardTrailsWhateverIsPreferred) {
  fake.add("|ball");
  fake.selection = {"|ball"};
  fake.loaded_plugins = {PLUGIN_BASENAME};
  fake.options[OPT_COLOR_MODE] = 3;
  fake.options[OPT_LINE_WIDTH] = 4.0;
  pellark_entry("lmb");
  const auto& attributes = fake.node("vlx_ball_vizShape").attributes;
  EXPECT_EQ(attributes.at("colorMode"), host::Value(0));
  EXPECT_EQ(attributes.at("lineWidth"), host::Value(4.0));
  EXPECT_EQ(fake.options[OPT_COLOR_MODE], host::Value(3));
}

TEST_F(Entry, AnActionThatIsNoTextFailsUnlessItIsEmpty) {
  EXPECT_THAT(commands_of(0), ElementsAre(kMenu));
  EXPECT_THAT(commands_of(host::Value::list({})), ElementsAre(kMenu));
  EXPECT_THAT(commands_of(host::Bytes{"clear"}), ElementsAre(kMenu));  // bytes are never equal to a text
  try {
    pellark_entry(7);
    FAIL() << "no error";
  } catch (const host::Error& e) {
    EXPECT_EQ(e.kind(), host::ErrorKind::attribute);
    EXPECT_STREQ(e.what(), "'int' object has no attribute 'strip'");
  }
}

TEST_F(Entry, FailuresOfACommandReachTheCaller) {
  recorder.fail_line("cmds.objExists");
  EXPECT_THROW(pellark_entry("clear"), host::Error);
}

TEST_F(Entry, WithoutAFrontEndTheMenuStaysShutInSilence) {
  EXPECT_FALSE(_open_menu());
  EXPECT_THAT(recorder.log(),
              ElementsAre("import Vantorelix", "from Vantorelix import show_trail_mini_menu; show_trail_mini_menu()"));
  pellark_entry("rmb");
  EXPECT_THAT(fake.messages, IsEmpty());
  EXPECT_THAT(fake.prints, IsEmpty());
}

TEST_F(Entry, TheMenuIsOpenedThroughTheModule) {
  int opened = 0;
  install_menu([&] { ++opened; });
  EXPECT_TRUE(_open_menu());
  EXPECT_EQ(opened, 1);
  EXPECT_THAT(recorder.log(), ElementsAre("import Vantorelix", "hasattr(Vantorelix, 'show_trail_mini_menu')",
                                          "Vantorelix.show_trail_mini_menu()"));
}

TEST_F(Entry, AMenuThatFailsOnceIsCalledASecondTime) {
  int calls = 0;
  install_menu([&] {
    if (++calls == 1) throw host::Error("not yet");
  });
  EXPECT_TRUE(_open_menu());
  EXPECT_EQ(calls, 2);
  EXPECT_THAT(recorder.log(), ElementsAre("import Vantorelix", "hasattr(Vantorelix, 'show_trail_mini_menu')",
                                          "Vantorelix.show_trail_mini_menu()",
                                          "from Vantorelix import show_trail_mini_menu; show_trail_mini_menu()"));
}

TEST_F(Entry, AMenuThatFailsTwiceIsNotOpen) {
  int calls = 0;
  install_menu([&] {
    ++calls;
    throw host::Error("never");
  });
  EXPECT_FALSE(_open_menu());
  EXPECT_EQ(calls, 2);
}

TEST_F(Entry, AFrontEndWithoutTheMenuIsTriedByNameToo) {
  fake.modules["Vantorelix"]["something_else"] = [] {};
  EXPECT_FALSE(_open_menu());
  EXPECT_THAT(recorder.log(), ElementsAre("import Vantorelix", "hasattr(Vantorelix, 'show_trail_mini_menu')",
                                          "from Vantorelix import show_trail_mini_menu; show_trail_mini_menu()"));
}

TEST_F(Entry, AnInterruptLeavesTheMenu) {
  install_menu([] { throw host::Interrupt(); });
  EXPECT_THROW(_open_menu(), host::Interrupt);
}

}  // namespace
}  // namespace vantorelix
