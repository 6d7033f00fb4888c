#include "standalone/host/host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>

#include "base/paths.h"
#include "host/error.h"

namespace vantorelix::standalone {
namespace {

namespace fs = std::filesystem;
using host::Error;
using host::ErrorKind;
using host::Value;
using testing::ElementsAre;
using testing::IsEmpty;

Host* current = nullptr;
std::string ran;
void a() { ran += 'a'; }
void again() {
  ran += 'r';
  current->cmds().evalDeferred({"again", again});
}

// What a host with everything redirected has heard.
struct Heard {
  std::vector<std::string> printed, warned, shown;
  HostOptions options() {
    HostOptions options;
    options.print = [this](const std::string& text) { printed.push_back(text); };
    options.warning = [this](const std::string& text) { warned.push_back(text); };
    options.in_view_message = [this](const std::string& text) { shown.push_back(text); };
    return options;
  }
};

TEST(Host, runs_deferred_calls_when_idle_and_only_then) {
  Host host{Scene()};
  current = &host;
  ran.clear();
  host.cmds().evalDeferred({"a", a});
  host.cmds().evalDeferred({"again", again});
  EXPECT_EQ(ran, "");
  EXPECT_EQ(host.idle_count(), 2u);
  EXPECT_EQ(host.run_idle(4), 4u);
  EXPECT_EQ(ran, "arrr");
  EXPECT_EQ(host.idle_count(), 1u);
}

TEST(Host, is_idle_without_deferred_calls) {
  Host host{Scene()};
  EXPECT_FALSE(host.run_idle_once());
  EXPECT_EQ(host.run_idle(), 0u);
}

TEST(Host, says_what_it_is_told_where_it_is_told_to) {
  Heard heard;
  Host host{Scene(), heard.options()};
  host.cmds().warning("careful");
  host.cmds().inViewMessage(7);
  host.interpreter().print("line");
  EXPECT_THAT(heard.warned, ElementsAre("careful"));
  EXPECT_THAT(heard.shown, ElementsAre("7"));
  EXPECT_THAT(heard.printed, ElementsAre("line"));
}

TEST(Host, prints_to_the_standard_streams_by_default) {
  Host host{Scene()};
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  host.interpreter().print("line");
  host.cmds().warning("careful");
  host.cmds().inViewMessage("nowhere");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "line\n");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Warning: careful\n");
}

TEST(Host, has_no_viewport_in_batch_mode) {
  HostOptions options;
  options.batch = true;
  Host host{Scene(), options};
  EXPECT_TRUE(host.cmds().about_batch());
  EXPECT_THAT(host.cmds().getPanel_model(), IsEmpty());
  EXPECT_THROW(host.cmds().inViewMessage("text"), Error);
}

TEST(Host, counts_redraws) {
  Host host{Scene()};
  host.cmds().refresh();
  host.cmds().refresh();
  EXPECT_EQ(host.refresh_count(), 2u);
}

TEST(Host, switches_the_trail_display_of_one_panel) {
  Host host{Scene()};
  auto& cmds = host.cmds();
  EXPECT_THAT(cmds.getPanel_model(), ElementsAre("modelPanel1", "modelPanel2", "modelPanel3", "modelPanel4"));
  EXPECT_FALSE(cmds.modelEditor_query("modelPanel2", "motionTrails"));
  cmds.modelEditor_enable("modelPanel2", "motionTrails");
  EXPECT_TRUE(cmds.modelEditor_query("modelPanel2", "motionTrails"));
  EXPECT_FALSE(cmds.modelEditor_query("modelPanel1", "motionTrails"));
  EXPECT_TRUE(host.panel_flag("modelPanel2", "motionTrails"));
  host.set_panel_flag("modelPanel2", "motionTrails", false);
  EXPECT_FALSE(cmds.modelEditor_query("modelPanel2", "motionTrails"));
  EXPECT_THROW(cmds.modelEditor_query("modelPanel9", "motionTrails"), Error);
  host.add_model_panel("modelPanel9");
  EXPECT_FALSE(cmds.modelEditor_query("modelPanel9", "motionTrails"));
  EXPECT_EQ(cmds.getPanel_model().back(), "modelPanel9");
  EXPECT_THROW(cmds.modelEditor_enable("modelPanel1", "unheardOf"), Error);
}

TEST(Host, keeps_option_variables_for_scripts_and_for_the_session_alike) {
  Host host{Scene()};
  auto& cmds = host.cmds();
  EXPECT_FALSE(cmds.optionVar_exists("a"));
  EXPECT_EQ(cmds.optionVar_query("a"), Value(0)) << "as the scripting host answers for an unknown variable";
  cmds.optionVar_set_int("a", 3);
  EXPECT_TRUE(cmds.optionVar_exists("a"));
  EXPECT_EQ(*host.option("a"), Value(3));
  cmds.optionVar_set_float("a", 3.0);
  EXPECT_EQ(cmds.optionVar_query("a"), Value(3.0));
  host.set_option("b", "x");
  cmds.optionVar_append_string("b", "y");
  EXPECT_EQ(cmds.optionVar_query("b"), Value::list({"x", "y"}));
}

TEST(Host, does_not_start_on_a_broken_preference_file) {
  const fs::path file = fs::path(testing::TempDir()) / "host_broken_preferences.json";
  std::ofstream(file) << "{";
  HostOptions options;
  options.preferences = file;
  EXPECT_THROW(Host(Scene(), options), Error);
  fs::remove(file);
}

TEST(Host, reads_the_clock_that_it_was_given_or_the_system_clock) {
  double now = 5.0;
  HostOptions options;
  options.clock = [&] { return now; };
  Host given{Scene(), options};
  EXPECT_EQ(given.interpreter().time(), 5.0);
  now = 6.5;
  EXPECT_EQ(given.interpreter().time(), 6.5);

  Host own{Scene()};
  const auto seconds = std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
  EXPECT_NEAR(own.interpreter().time(), seconds, 5.0);
}

TEST(Host, has_an_environment_of_its_own) {
  Host host{Scene()};
  EXPECT_FALSE(host.interpreter().environment("PATH"));
  host.interpreter().set_environment("A", "1");
  EXPECT_EQ(host.interpreter().environment("A"), "1");
  host.set_environment("A", "2");
  EXPECT_EQ(host.interpreter().environment("A"), "2");
}

TEST(Host, imports_the_modules_that_it_was_given) {
  Host host{Scene()};
  int calls = 0;
  host.add_module("Menu", {{"show", [&] { ++calls; }}, {"gone", nullptr}});
  const auto module = host.interpreter().import_module("Menu");
  EXPECT_TRUE(module->has_attribute("show"));
  EXPECT_FALSE(module->has_attribute("gone"));
  EXPECT_FALSE(module->has_attribute("unheard_of"));
  module->call("show");
  host.interpreter().call_imported("Menu", "show");
  EXPECT_EQ(calls, 2);
  EXPECT_THROW(module->call("gone"), Error);
  EXPECT_THROW(host.interpreter().call_imported("Menu", "gone"), Error);
  try {
    host.interpreter().import_module("Nowhere");
    ADD_FAILURE();
  } catch (const Error& error) {
    EXPECT_EQ(error.kind(), ErrorKind::import);
    EXPECT_STREQ(error.what(), "No module named 'Nowhere'");
  }
}

TEST(Host, tells_scripts_what_it_was_told_of_itself) {
  HostOptions options;
  options.version = "2025.1";
  options.user_app_dir = "somewhere/";
  options.module_file = "folder/engine.so";
  options.module_search_path = {"folder", 7};
  Host host{Scene(), options};
  EXPECT_EQ(host.cmds().about_version(), "2025.1");
  EXPECT_FALSE(host.cmds().about_batch());
  EXPECT_EQ(host.cmds().internalVar_userAppDir(), "somewhere/");
  EXPECT_EQ(host.interpreter().module_file(), "folder/engine.so");
  EXPECT_THAT(host.interpreter().module_search_path(), ElementsAre(Value("folder"), Value(7)));
}

TEST(Host, reports_a_message_callback_that_fails_and_finishes_the_edit) {
  Heard heard;
  Host host{Scene(), heard.options()};
  host.oma().addAnimKeyframeEditedCallback({"fails", [] { throw Error("no luck"); }});
  const NodeId ball = host.scene().nodes.create("transform", "ball");
  host.scene().curves.set_key(ball, Channel::translateX, 1.0, 5.0);
  EXPECT_THAT(heard.warned, ElementsAre("callback fails failed: no luck"));
  EXPECT_EQ(host.scene().curves.key_count(ball), 1u);
}

// --- the plug-in ------------------------------------------------------------------------------------------------

class HostPlugin : public testing::Test {
 protected:
  HostPlugin() {
    const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
    folder = fs::path(testing::TempDir()) / ("plugin_" + test);
    fs::create_directories(folder);
  }
  ~HostPlugin() override { fs::remove_all(folder); }

  static HostOptions unloaded() {
    HostOptions options;
    options.plugin_loaded = false;
    return options;
  }
  std::string file(const std::string& name) const {
    std::ofstream((folder / name)) << "# plug-in\n";
    return (folder / name).string();
  }
  bool loaded() { return host.cmds().pluginInfo_loaded("Vantorelix_plugin"); }

  fs::path folder;
  Host host{Scene(), unloaded()};
};

TEST_F(HostPlugin, is_there_from_the_start_unless_told_otherwise) {
  Host usual{Scene()};
  EXPECT_TRUE(usual.cmds().pluginInfo_loaded("Vantorelix_plugin"));
  EXPECT_THAT(usual.loaded_plugins(), ElementsAre("Vantorelix_plugin"));
  EXPECT_FALSE(usual.cmds().pluginInfo_loaded("unheard_of"));
  EXPECT_FALSE(loaded());
  EXPECT_THAT(host.loaded_plugins(), IsEmpty());
}

TEST_F(HostPlugin, defines_the_node_type_when_its_file_is_loaded) {
  EXPECT_THROW(host.cmds().createNode("vantorelix", "x"), Error);
  host.cmds().loadPlugin(file("Vantorelix_plugin.py"));
  EXPECT_TRUE(loaded());
  EXPECT_EQ(host.cmds().createNode("vantorelix", "x"), "x");
}

TEST_F(HostPlugin, is_found_by_its_bare_names_on_the_search_path) {
  const char* const bare_names[] = {"Vantorelix_plugin.py", "Vantorelix_plugin"};
  for (const char* name : bare_names) EXPECT_THROW(host.cmds().loadPlugin(name), Error) << name;
  file("Vantorelix_plugin.py");
  for (const char* name : bare_names) {
    Host another{Scene(), unloaded()};
    const std::string separator(1, paths::kNative.list_separator);
    another.set_environment("MAYA_PLUG_IN_PATH", separator + folder.string() + separator + separator + "nowhere");
    another.cmds().loadPlugin(name);
    EXPECT_TRUE(another.cmds().pluginInfo_loaded("Vantorelix_plugin")) << name;
    another.cmds().loadPlugin(name);
  }
}

TEST_F(HostPlugin, is_refused_when_the_file_is_missing_or_another) {
  try {
    host.cmds().loadPlugin((folder / "Vantorelix_plugin.py").string());
    ADD_FAILURE();
  } catch (const Error& error) {
    EXPECT_EQ(error.what(),
              "Plug-in, \"" + (folder / "Vantorelix_plugin.py").string() + "\", was not found on MAYA_PLUG_IN_PATH.");
  }
  EXPECT_THROW(host.cmds().loadPlugin(file("another.py")), Error);
  EXPECT_THROW(host.cmds().loadPlugin(folder.string()), Error);
  EXPECT_FALSE(loaded());
}

}  // namespace
}  // namespace vantorelix::standalone
