// Live pages, in a program that has the engine and in one that was built without.
#include "cli/output/page/live_html.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "base/text_sink.h"
#include "cli/output/page/page.h"
#include "cli/terminal/failure.h"

namespace vantorelix::cli {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

bool without_engine() { return engine_blocks().empty(); }

std::string written(const LiveScene* scene) {
  StringSink out;
  write_live_html(out, scene);
  return out.text();
}

// What stands in the element with that id.
std::string block(const std::string& page, const std::string& id) {
  const std::size_t begin = page.find("id=\"" + id + "\">");
  EXPECT_NE(begin, std::string::npos) << id;
  const std::size_t from = page.find('>', begin) + 1;
  return page.substr(from, page.find("</script>", from) - from);
}

TEST(LiveHtml, SaysWhatToDoWhereTheProgramHasNoEngine) {
  if (!without_engine()) GTEST_SKIP() << "this program has the engine";
  try {
    written(nullptr);
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_THAT(failure.what(), HasSubstr("built without the engine for live pages; build it with './dev build'"));
  }
}

TEST(LiveHtml, HoldsTheEngineItsOwnPolicyAndNoScene) {
  if (without_engine()) GTEST_SKIP() << "this program has no engine";
  const std::string page = written(nullptr);
  EXPECT_THAT(page, HasSubstr("id=\"engine-worker\""));
  EXPECT_THAT(page, HasSubstr("id=\"engine-wasm\""));
  EXPECT_THAT(page, HasSubstr(std::string("content=\"") + std::string(live_policy())));
  EXPECT_THAT(page, Not(HasSubstr(std::string("content=\"") + std::string(page_policy()) + "\"")));
  EXPECT_THAT(page, Not(HasSubstr("id=\"scene-header\"")));
  EXPECT_THAT(page, Not(HasSubstr(std::string(kPagePlace))));
}

TEST(LiveHtml, HoldsTheFilesOfASceneAndWhatWasAskedOfIt) {
  if (without_engine()) GTEST_SKIP() << "this program has no engine";
  LiveScene scene;
  scene.name = "shots/</script>.gltf";
  scene.files = {{"</script>.gltf", "abc"}, {"in/a.bin", std::string("\0\xff", 2)}};
  scene.take = "walk";
  scene.selection.patterns = {"*Foot"};
  scene.last = 12.5;
  scene.show_dots = false;
  const std::string page = written(&scene);
  const json header = json::parse(block(page, "scene-header"));
  EXPECT_EQ(header["name"], scene.name);
  EXPECT_EQ(header["files"],
            json::parse(R"([{"name": "</script>.gltf", "bytes": 3}, {"name": "in/a.bin", "bytes": 2}])"));
  EXPECT_EQ(header["reading"], json::parse(R"({"take": "walk", "axis": "", "unit": "", "fps": 0})"));
  EXPECT_EQ(header["trails"]["patterns"], json::array({"*Foot"}));
  EXPECT_EQ(header["trails"]["last"], 12.5);
  EXPECT_EQ(header["trails"]["first"], nullptr);
  EXPECT_EQ(header["showDots"], false);
  EXPECT_EQ(header["lineWidth"], nullptr);
  EXPECT_EQ(block(page, "scene-data"), "YWJjAP8=");
}

}  // namespace
}  // namespace vantorelix::cli
