#include "base/instruction_sets.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>

namespace vantorelix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Loops {
  const char* name;
};
constexpr Loops kBase = {"base"}, kAvx2 = {"avx2"}, kAvx512 = {"avx512"};

TEST(Widths, OfTheNarrowestAloneAreThat) {
  const Widths<Loops> widths(kBase);
  EXPECT_THAT(widths.here, ElementsAre(&kBase));
  EXPECT_THAT(widths.elsewhere, IsEmpty());
}

TEST(Widths, AreEachHereOrElsewhereAsTheProcessorIs) {
  const Widths<Loops> widths(kBase, kAvx2, kAvx512);
  EXPECT_EQ(widths.here.size() + widths.elsewhere.size(), 3u);
  EXPECT_EQ(widths.here.front(), &kBase);
  EXPECT_EQ(std::find(widths.here.begin(), widths.here.end(), &kAvx2) != widths.here.end(), this_processor().avx2);
  EXPECT_EQ(widths.here.back() == &kAvx512, this_processor().avx512);
}

TEST(Processor, IsWhatTheSystemSaysOfIt) {
  std::ifstream system("/proc/cpuinfo");
  std::string line;
  while (std::getline(system, line) && !line.starts_with("flags")) {
  }
  if (line.empty()) GTEST_SKIP() << "this system does not say what its processor has";
  const auto has = [&line](const std::string& flag) {
    return (line + " ").find(" " + flag + " ") != std::string::npos;
  };
  EXPECT_EQ(this_processor().avx2, has("avx2"));
  EXPECT_EQ(this_processor().avx512, has("avx512f") && has("avx512dq") && has("avx512vl"));
}

}  // namespace
}  // namespace vantorelix
