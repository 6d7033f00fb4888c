#include <filesystem>
#include <fstream>

#include "engine/bootstrap/plugin.h"
#include "tests/contract/contract_test.h"

namespace vantorelix::contract {
namespace {

namespace fs = std::filesystem;

// An engine folder and a user's application folder, both empty, on a host of version 2024.
class BootstrapContract : public ContractTest {
 protected:
  void SetUp() override {
    std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
    for (char& c : name)
      if (c == '/') c = '_';
    folder = fs::path(testing::TempDir()) / ("bootstrap_" + name);
    fs::remove_all(folder);
    fs::create_directories(folder / "engine");
    plug_ins = (folder / "user" / "2024" / "plug-ins").generic_string();
    const Placement placement = {(folder / "engine" / "engine.so").string(), (folder / "user" / "").string()};
    start(&placement);
  }
  void TearDown() override {
    ContractTest::TearDown();
    fs::remove_all(folder);
  }

  static Lines loaded() { return {"cmds.pluginInfo('Vantorelix_plugin', q=True, loaded=True)"}; }
  static Lines user_folder() { return {"cmds.internalVar(userAppDir=True)", "cmds.about(version=True)"}; }
  Lines made_reachable() const {
    return {"os.environ.get('MAYA_PLUG_IN_PATH')", "os.environ['MAYA_PLUG_IN_PATH'] = '" + plug_ins + "'",
            "cmds.optionVar(q='SafeModeAllowedlistPaths')",
            "cmds.optionVar(stringValueAppend=('SafeModeAllowedlistPaths', '" + plug_ins + "'))"};
  }

  fs::path folder;
  std::string plug_ins;
};

TEST_P(BootstrapContract, stages_the_plugin_beside_the_engine_and_loads_the_copy) {
  std::ofstream(folder / "engine" / "Vantorelix_plugin.py") << "# node\n";
  EXPECT_TRUE(_ensure_plugin());
  const std::string copy = plug_ins + "/Vantorelix_plugin.py";
  const Lines staging = user_folder();
  const Lines candidates = user_folder();
  const Lines first_candidate = user_folder() + Lines{"os.environ.get('MAYA_PLUG_IN_PATH')"} +
                                Lines{"cmds.loadPlugin('" + copy + "', quiet=True)"} + loaded();
  EXPECT_EQ(log(), loaded() + user_folder() + made_reachable() + staging + candidates + first_candidate);
  EXPECT_TRUE(fs::is_regular_file(copy));
  EXPECT_TRUE(_ensure_plugin());
  EXPECT_EQ(log(), loaded()) << "once loaded, nothing is touched";
}

TEST_P(BootstrapContract, names_every_place_it_tried_when_there_is_no_plugin) {
  EXPECT_FALSE(_ensure_plugin());
  const std::string engine = (folder / "engine").string();
  const std::string parent = folder.string();
  const std::string above = folder.parent_path().string();
  const std::string file = "/Vantorelix_plugin.py";
  const std::string tried = plug_ins + file + " | " + engine + file + " | " + parent + "/modules" + file + " | " +
                            parent + file + " | " + above + "/bin/modules" + file + " | " + above + "/modules" + file +
                            " | Vantorelix_plugin.py | Vantorelix_plugin";
  const Lines lines = log();
  const Lines attempt = {"cmds.loadPlugin('Vantorelix_plugin', quiet=True)"};
  const Lines calls(lines.begin(), lines.end() - 1);
  EXPECT_EQ(calls, loaded() + user_folder() + made_reachable() + user_folder() + attempt)
      << "of the files none exists, so only the bare name reaches the host";
  expected_warnings = {"[Vantorelix] Plugin 'Vantorelix_plugin.py' not found. Tried: " + tried +
                       " | last error: Plug-in, \"Vantorelix_plugin\", was not found on MAYA_PLUG_IN_PATH."};
}

VANTORELIX_OVER_EVERY_HOST(BootstrapContract);

}  // namespace
}  // namespace vantorelix::contract
