// The code in docs/host.md is the code below, which is compiled and run.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <utility>

#include "engine/commands/create.h"
#include "engine/state/state.h"
#include "standalone/host/host.h"

namespace vantorelix {
namespace {

std::string content(const std::string& file) {
  std::ostringstream text;
  text << std::ifstream(std::string(VANTORELIX_SOURCE_DIR) + "/" + file, std::ios::binary).rdbuf();
  return text.str();
}

// What stands between the first `begin` and the next `end`.
std::string between(const std::string& text, const std::string& begin, const std::string& end) {
  const std::size_t first = text.find(begin);
  if (first == std::string::npos) return "no " + begin;
  const std::size_t start = first + begin.size();
  return text.substr(start, text.find(end, start) - start);
}

std::string unindented(const std::string& text) {
  std::istringstream lines(text);
  std::string result;
  for (std::string line; std::getline(lines, line);) result += line.substr(line.rfind("  ", 0) == 0 ? 2 : 0) + "\n";
  return result;
}

TEST(HostDocument, shows_code_that_runs) {
  // clang-format off
  // begin: first trail
  standalone::Scene scene;
  const standalone::NodeId ball = scene.nodes.create("transform", "ball");
  scene.curves.set_key(ball, standalone::Channel::translateX, 1.0, 0.0);
  scene.curves.set_key(ball, standalone::Channel::translateX, 25.0, 12.0);
  scene.settings.set_playback_range(1.0, 25.0);

  standalone::Host host(std::move(scene));
  _initialise({&host.cmds(), &host.om(), &host.oma(), &host.interpreter()});

  host.select({ball});
  create_trail();   // what fits into 0.15 s is exact at once ...
  host.run_idle();  // ... the rest follows in slices, whenever the host is idle

  const standalone::NodeId shape = host.scene().names.find("vlx_ball_vizShape");
  const Vectors points = host.scene().attributes.vectors(shape, "points");  // 25 positions, one a frame
  // end: first trail
  // clang-format on
  ASSERT_TRUE(points);
  EXPECT_EQ(points->size(), 25u);
  EXPECT_EQ(points->front(), (Vector{0.0, 0.0, 0.0}));
  EXPECT_EQ(points->back(), (Vector{12.0, 0.0, 0.0}));
  _initialise({&host.cmds(), &host.om(), &host.oma(), &host.interpreter()});
}

TEST(HostDocument, shows_the_code_that_is_run_here) {
  const std::string here =
      between(content("tests/contract/host_document_test.cpp"), "// begin: first trail\n", "  // end: first trail");
  const std::string there = between(content("docs/host.md"), "<!-- snippet: first trail -->\n```cpp\n", "```");
  EXPECT_EQ(there, unindented(here));
}

}  // namespace
}  // namespace vantorelix
