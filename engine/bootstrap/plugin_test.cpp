#include "engine/bootstrap/plugin.h"

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>

#include "base/paths.h"
#include "host/error.h"
#include "tests/support/engine_test.h"
#include "tests/support/temporary_folder.h"

namespace vantorelix {
namespace {

using support::kPrints;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

const std::string kVariable = "MAYA_PLUG_IN_PATH";
const std::string kAllowed = "SafeModeAllowedlistPaths";
const std::string kFile = "Vantorelix_plugin.py";

// The engine lies in ".../suite/scripts", the user's application folder is ".../user/".
class PluginTest : public support::EngineTest {
 protected:
  support::TemporaryFolder temp;
  std::string here = temp / "suite/scripts";
  std::string user_folder = temp / "user/2024/plug-ins";

  void SetUp() override {
    fs::create_directories(here);
    fake.file = here + "/Vantorelix_engine.py";
    fake.user_app_dir = temp / "user/";
    fake.version = "2024.1";
    EngineTest::SetUp();
  }

  // Loading any path that ends so succeeds.
  void loading_works_for(const std::string& path_end) {
    fake.on_load_plugin = [this, path_end](const std::string& path) {
      if (!path.ends_with(path_end)) throw host::Error("cannot load " + path);
      fake.loaded_plugins.insert("Vantorelix_plugin");
    };
  }
  std::string ship_plugin(const std::string& content = "shipped") {
    return temp.write("suite/scripts/" + kFile, content);
  }
  std::string stage_by_hand(const std::string& content) { return temp.write("user/2024/plug-ins/" + kFile, content); }
  std::string staged() { return temp.read("user/2024/plug-ins/" + kFile); }
  static void set_age(const std::string& file, std::chrono::seconds age) {
    static const auto now = fs::file_time_type::clock::now();
    fs::last_write_time(file, now - age);
  }
};

// --- the user's folder -----------------------------------------------------------------------------------------

TEST_F(PluginTest, TheUserFolderIsNamedAfterTheYearOfTheVersionAndIsMade) {
  for (const std::string version : {"2024.1", "2024", " 2024 .3.1"}) {
    fake.version = version;
    EXPECT_EQ(_maya_user_plugins_dir(), user_folder) << version;
  }
  EXPECT_TRUE(fs::is_directory(user_folder));
}

TEST_F(PluginTest, TheUserFolderIsWrittenWithForwardSlashes) {
  fake.user_app_dir = temp / "user\\maya";
  EXPECT_EQ(_maya_user_plugins_dir(), temp / "user/maya/2024/plug-ins");
}

TEST_F(PluginTest, AnEmptyVersionLeavesItsComponentOut) {
  fake.version = "";
  EXPECT_EQ(_maya_user_plugins_dir(), temp / "user/plug-ins");
}

TEST_F(PluginTest, AUserFolderThatCannotBeMadeIsReturnedAllTheSame) {
  temp.write("user", "a file where the folder should be");
  EXPECT_EQ(_maya_user_plugins_dir(), user_folder);
  EXPECT_FALSE(fs::exists(user_folder));
}

TEST_F(PluginTest, AHostThatCannotNameItsFolderOrVersionEndsTheBootstrap) {
  recorder.fail_line("cmds.internalVar(");
  EXPECT_THROW(_ensure_plugin(), host::Error);
  recorder.stop_failing();
  recorder.fail_line("cmds.about(");
  EXPECT_THROW(_ensure_plugin(), host::Error);
}

// --- staging ---------------------------------------------------------------------------------------------------

TEST_F(PluginTest, StagingCopiesContentPermissionsAndModificationTime) {
  const std::string source = ship_plugin();
  set_age(source, std::chrono::seconds(1000));
  fs::permissions(source, fs::perms::owner_read | fs::perms::owner_exec);

  EXPECT_EQ(_stage_plugin_in_safe_dir(source), user_folder + "/" + kFile);
  EXPECT_EQ(staged(), "shipped");
  EXPECT_EQ(fs::last_write_time(user_folder + "/" + kFile), fs::last_write_time(source));
  EXPECT_EQ(fs::status(user_folder + "/" + kFile).permissions(), fs::status(source).permissions());
}

TEST_F(PluginTest, ACopyOfTheSameTimeIsNotMadeAgain) {
  const std::string source = ship_plugin();
  _stage_plugin_in_safe_dir(source);
  temp.write("suite/scripts/" + kFile, "changed");
  fs::last_write_time(source, fs::last_write_time(user_folder + "/" + kFile));
  EXPECT_EQ(_stage_plugin_in_safe_dir(source), user_folder + "/" + kFile);
  EXPECT_EQ(staged(), "shipped");
}

TEST_F(PluginTest, ASourceNewerByASecondReplacesTheCopyAndAnOlderOneDoesNot) {
  const std::string source = ship_plugin();
  const std::string copy = stage_by_hand("staged");
  set_age(copy, std::chrono::seconds(100));
  set_age(source, std::chrono::seconds(101));
  _stage_plugin_in_safe_dir(source);
  EXPECT_EQ(staged(), "staged");
  set_age(source, std::chrono::seconds(99));
  _stage_plugin_in_safe_dir(source);
  EXPECT_EQ(staged(), "shipped");
}

TEST_F(PluginTest, ASourceInTheUserFolderUnderAnotherLetterCaseIsUsedAsGiven) {
  const std::string copy = stage_by_hand("staged");
  const std::string shouted = temp.write("user/2024/plug-ins/VANTORELIX_plugin.py", "staged");
  set_age(shouted, std::chrono::seconds(-10));  // newer than the copy, were it another file
  EXPECT_EQ(_stage_plugin_in_safe_dir(shouted), shouted);
  EXPECT_EQ(_stage_plugin_in_safe_dir(copy), copy);
  EXPECT_EQ(staged(), "staged");
}

TEST_F(PluginTest, ASourceThatCannotBeCopiedIsUsedWhereItLies) {
  const std::string missing = here + "/missing.py";
  EXPECT_EQ(_stage_plugin_in_safe_dir(missing), missing);
}

TEST_F(PluginTest, WithoutAUserFolderTheSourceIsUsedWhereItLies) {
  temp.write("user", "a file where the folder should be");
  const std::string source = ship_plugin();
  EXPECT_EQ(_stage_plugin_in_safe_dir(source), source);
}

// --- candidates ------------------------------------------------------------------------------------------------

TEST_F(PluginTest, CandidatesComeInTheirFixedOrder) {
  if (paths::kNative.windows) GTEST_SKIP() << support::kOtherPathsThere;
  const std::string suite = temp / "suite";
  const std::string top = paths::directory_name(suite);
  fake.search_path = {"/elsewhere", 7, host::Bytes{"/bytes"}, "/elsewhere", host::Value(), "/last/"};
  EXPECT_THAT(_candidate_plugin_paths(),
              ElementsAre(user_folder + "/" + kFile, here + "/" + kFile, suite + "/modules/" + kFile,
                          suite + "/" + kFile, top + "/bin/modules/" + kFile, top + "/modules/" + kFile,
                          "/elsewhere/" + kFile, "/last/" + kFile, kFile, "Vantorelix_plugin"));
}

TEST_F(PluginTest, ASearchPathEntryThatIsTheEnginesFolderAddsNothing) {
  if (paths::kNative.windows) GTEST_SKIP() << support::kOtherPathsThere;
  const std::vector<std::string> without = _candidate_plugin_paths();
  fake.search_path = {here};
  EXPECT_EQ(_candidate_plugin_paths(), without);
  EXPECT_EQ(without[1], here + "/" + kFile);
}

TEST_F(PluginTest, FixedCandidatesStayEvenWhereTwoCoincide) {
  if (paths::kNative.windows) GTEST_SKIP() << support::kOtherPathsThere;
  fake.file = "/modules/Vantorelix_engine.py";  // its folder's parent is the top
  EXPECT_THAT(_candidate_plugin_paths(), ElementsAre(user_folder + "/" + kFile, "/modules/" + kFile,
                                                     "/modules/" + kFile, "/" + kFile, kFile, "Vantorelix_plugin"));
}

TEST_F(PluginTest, AnEngineWithoutAFileOfItsOwnLeavesThoseCandidatesOut) {
  if (paths::kNative.windows) GTEST_SKIP() << support::kOtherPathsThere;
  fake.file = "";
  EXPECT_THAT(_candidate_plugin_paths(), ElementsAre(user_folder + "/" + kFile, kFile, "Vantorelix_plugin"));
}

TEST_F(PluginTest, AnEmptySearchPathEntryIsTheBareFileNameAndTheBareNameStillFollows) {
  if (paths::kNative.windows) GTEST_SKIP() << support::kOtherPathsThere;
  fake.file = "";
  fake.search_path = {""};
  EXPECT_THAT(_candidate_plugin_paths(), ElementsAre(user_folder + "/" + kFile, kFile, kFile, "Vantorelix_plugin"));
}

// --- the safe-mode list ----------------------------------------------------------------------------------------

TEST_F(PluginTest, AFolderIsAppendedToTheSafeModeListInItsNormalForm) {
  _whitelist_folder(temp / "suite/./scripts/../scripts");
  EXPECT_EQ(fake.options[kAllowed], host::Value::list({here}));
}

TEST_F(PluginTest, AFolderThatIsEmptyOrMissingIsNotLookedUp) {
  _whitelist_folder("");
  _whitelist_folder(here + "/missing");
  EXPECT_THAT(recorder.log(), IsEmpty());
}

TEST_F(PluginTest, AFolderInTheListIsFoundInWhateverFormTheHostGivesTheList) {
  std::string backslashes = here;
  std::replace(backslashes.begin(), backslashes.end(), '/', '\\');
  for (const host::Value& stored :
       {host::Value(here + "/"), host::Value(host::Bytes{here}), host::Value::list({"", 7, "/other", here})}) {
    fake.options[kAllowed] = stored;
    _whitelist_folder(here);
    EXPECT_EQ(fake.options[kAllowed], stored) << stored.repr();
  }
  fake.options[kAllowed] = backslashes;
  _whitelist_folder(here);
  EXPECT_EQ(fake.options[kAllowed], host::Value(backslashes));
}

TEST_F(PluginTest, TheSafeModeListIsComparedByCase) {
  fake.options[kAllowed] = temp / "suite/Scripts";
  _whitelist_folder(here);
  EXPECT_EQ(fake.options[kAllowed], host::Value::list({temp / "suite/Scripts", here}));
}

TEST_F(PluginTest, ASafeModeListThatCannotBeReadOrIsNoListCountsAsEmpty) {
  fake.options[kAllowed] = 7;
  _whitelist_folder(here);
  EXPECT_EQ(recorder.count("cmds.optionVar(stringValueAppend="), 1u);
  recorder.fail_line("cmds.optionVar(q=");
  _whitelist_folder(here);
  EXPECT_EQ(recorder.count("cmds.optionVar(stringValueAppend="), 2u);
}

TEST_F(PluginTest, ASafeModeListThatCannotBeWrittenIsLeft) {
  recorder.fail_line("cmds.optionVar(stringValueAppend=");
  EXPECT_NO_THROW(_whitelist_folder(here));
}

// --- the search path -------------------------------------------------------------------------------------------

TEST_F(PluginTest, AFolderIsAppendedToTheSearchPathAndEmptyPiecesGo) {
  const std::string sep(1, paths::kNative.list_separator);
  fake.environment_variables[kVariable] = "a" + sep + sep + "b";
  _ensure_plugin_path_env("c");
  EXPECT_EQ(fake.environment_variables[kVariable], "a" + sep + "b" + sep + "c");
}

TEST_F(PluginTest, ASearchPathThatHasTheFolderIsLeftUntouched) {
  const std::string sep(1, paths::kNative.list_separator);
  fake.environment_variables[kVariable] = "a" + sep + sep + "b";
  _ensure_plugin_path_env("a");
  EXPECT_EQ(fake.environment_variables[kVariable], "a" + sep + sep + "b");
  EXPECT_EQ(recorder.count("os.environ["), 0u);
}

TEST_F(PluginTest, AnUnsetSearchPathBecomesTheFolderAndAnEmptyFolderChangesNothing) {
  _ensure_plugin_path_env("");
  EXPECT_THAT(fake.environment_variables, IsEmpty());
  _ensure_plugin_path_env("c");
  EXPECT_EQ(fake.environment_variables[kVariable], "c");
}

// --- all together ----------------------------------------------------------------------------------------------

TEST_F(PluginTest, ALoadedPluginIsLeftAlone) {
  fake.loaded_plugins.insert("Vantorelix_plugin");
  EXPECT_TRUE(_ensure_plugin());
  EXPECT_THAT(recorder.log(), ElementsAre("cmds.pluginInfo('Vantorelix_plugin', q=True, loaded=True)"));
  EXPECT_FALSE(fs::exists(temp / "user"));
}

TEST_F(PluginTest, AnEmptyUserFolderGetsTheShippedPluginAndTheFirstCandidateLoads) {
  if (paths::kNative.windows) GTEST_SKIP() << support::kOtherPathsThere;
  const std::string source = ship_plugin();
  loading_works_for(user_folder + "/" + kFile);
  EXPECT_TRUE(_ensure_plugin());

  const std::string base = "cmds.internalVar(userAppDir=True)";
  const std::string version = "cmds.about(version=True)";
  const std::string loaded = "cmds.pluginInfo('Vantorelix_plugin', q=True, loaded=True)";
  EXPECT_THAT(recorder.log(),
              ElementsAre(loaded, base, version,                                      //
                          "os.environ.get('MAYA_PLUG_IN_PATH')",                      //
                          "os.environ['MAYA_PLUG_IN_PATH'] = '" + user_folder + "'",  //
                          "cmds.optionVar(q='SafeModeAllowedlistPaths')",             //
                          "cmds.optionVar(stringValueAppend=('SafeModeAllowedlistPaths', '" + user_folder + "'))",
                          "__file__", base, version,              // the shipped file is staged
                          base, version, "__file__", "sys.path",  // the candidates
                          base, version,                          // the first is staged
                          "os.environ.get('MAYA_PLUG_IN_PATH')",  //
                          "cmds.loadPlugin('" + user_folder + "/" + kFile + "', quiet=True)", loaded));
  EXPECT_EQ(staged(), "shipped");
  EXPECT_EQ(fs::last_write_time(user_folder + "/" + kFile), fs::last_write_time(source));
}

TEST_F(PluginTest, OnlyTheFirstShippedSourceIsStaged) {
  set_age(ship_plugin(), std::chrono::seconds(20));
  set_age(temp.write("suite/modules/" + kFile, "from modules"), std::chrono::seconds(10));
  loading_works_for(kFile);
  EXPECT_TRUE(_ensure_plugin());
  EXPECT_EQ(staged(), "shipped");
}

TEST_F(PluginTest, ThePluginInTheModulesFolderIsStagedWhenNoneLiesBesideTheEngine) {
  temp.write("suite/modules/" + kFile, "from modules");
  loading_works_for(kFile);
  EXPECT_TRUE(_ensure_plugin());
  EXPECT_EQ(staged(), "from modules");
}

TEST_F(PluginTest, WithoutAUserFolderThePluginLoadsFromWhereItLiesAndItsFolderJoinsTheSearchPath) {
  if (paths::kNative.windows) GTEST_SKIP() << support::kOtherPathsThere;
  temp.write("user", "a file where the folder should be");
  const std::string source = ship_plugin();
  loading_works_for(source);
  EXPECT_TRUE(_ensure_plugin());
  const std::string sep(1, paths::kNative.list_separator);
  EXPECT_EQ(fake.environment_variables[kVariable], user_folder + sep + here);
}

TEST_F(PluginTest, AFailedQueryCountsAsNotLoadedAndTheBareNameIsTriedLast) {
  recorder.fail_line("cmds.pluginInfo(", 1);
  loading_works_for("Vantorelix_plugin");
  EXPECT_TRUE(_ensure_plugin());
  EXPECT_EQ(recorder.count("cmds.loadPlugin('Vantorelix_plugin', quiet=True)"), 1u);
  EXPECT_EQ(recorder.count("cmds.loadPlugin("), 1u);
}

TEST_F(PluginTest, WhenNothingLoadsOneWarningNamesEveryPlaceAndTheLastError) {
  if (paths::kNative.windows) GTEST_SKIP() << support::kOtherPathsThere;
  fake.file = "";
  fake.search_path = {"/nowhere"};
  expect_warning("[Vantorelix] Plugin 'Vantorelix_plugin.py' not found. Tried: " + user_folder +
                 "/Vantorelix_plugin.py | /nowhere/Vantorelix_plugin.py | Vantorelix_plugin.py | Vantorelix_plugin"
                 " | last error: no such plug-in: Vantorelix_plugin");
  fake.on_load_plugin = [](const std::string& path) { throw host::Error("no such plug-in: " + path); };
  EXPECT_FALSE(_ensure_plugin());
}

TEST_F(PluginTest, ALoadThatLeavesNothingLoadedIsNoErrorOfItsOwn) {
  if (paths::kNative.windows) GTEST_SKIP() << support::kOtherPathsThere;
  fake.file = "";
  fake.on_load_plugin = [](const std::string&) {};
  expect_warning("[Vantorelix] Plugin 'Vantorelix_plugin.py' not found. Tried: " + user_folder +
                 "/Vantorelix_plugin.py | Vantorelix_plugin.py | Vantorelix_plugin");
  EXPECT_FALSE(_ensure_plugin());
}

TEST_F(PluginTest, TheLastErrorOfSeveralIsTheOneReported) {
  if (paths::kNative.windows) GTEST_SKIP() << support::kOtherPathsThere;
  stage_by_hand("broken");
  fake.file = "";
  fake.on_load_plugin = [](const std::string& path) {
    throw host::Error(path == "Vantorelix_plugin" ? "second" : "first");
  };
  expect_warning("[Vantorelix] Plugin 'Vantorelix_plugin.py' not found. Tried: " + user_folder +
                 "/Vantorelix_plugin.py | Vantorelix_plugin.py | Vantorelix_plugin | last error: second");
  EXPECT_FALSE(_ensure_plugin());
  EXPECT_EQ(recorder.count("cmds.loadPlugin("), 2u);
}

TEST_F(PluginTest, AnInterruptWhileLoadingPassesThrough) {
  recorder.fail_line("cmds.loadPlugin(", 0, support::Failure::interrupt);
  EXPECT_THROW(_ensure_plugin(), host::Interrupt);
}

}  // namespace
}  // namespace vantorelix
