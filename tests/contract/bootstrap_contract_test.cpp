#include <filesystem>

#include "base/paths.h"
#include "engine/bootstrap/plugin.h"
#include "tests/contract/contract_test.h"
#include "tests/support/temporary_folder.h"

namespace vantorelix::contract {
namespace {

namespace fs = std::filesystem;

// An engine folder and a user's application folder, both still to be made, on a host of version 2024.
class BootstrapContract : public ContractTest {
 protected:
  void SetUp() override {
    const Placement placement = {folder / "engine/engine.so", folder / "user/"};
    start(&placement);
  }

  static Lines loaded() { return {"cmds.pluginInfo('Vantorelix_plugin', q=True, loaded=True)"}; }
  static Lines user_folder() { return {"cmds.internalVar(userAppDir=True)", "cmds.about(version=True)"}; }
  Lines made_reachable() const {
    return {"os.environ.get('MAYA_PLUG_IN_PATH')", "os.environ['MAYA_PLUG_IN_PATH'] = '" + plug_ins + "'",
            "cmds.optionVar(q='SafeModeAllowedlistPaths')",
            "cmds.optionVar(stringValueAppend=('SafeModeAllowedlistPaths', '" + plug_ins + "'))"};
  }

  support::TemporaryFolder folder;
  std::string plug_ins = folder / "user/2024/plug-ins";
};

TEST_P(BootstrapContract, stages_the_plugin_beside_the_engine_and_loads_the_copy) {
  if (paths::kNative.windows) GTEST_SKIP() << support::kOtherPathsThere;
  folder.write("engine/Vantorelix_plugin.py", "# node\n");
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
  if (paths::kNative.windows) GTEST_SKIP() << support::kOtherPathsThere;
  EXPECT_FALSE(_ensure_plugin());
  const std::string engine = folder / "engine";
  const std::string parent = fs::path(engine).parent_path().string();
  const std::string above = fs::path(parent).parent_path().string();
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
