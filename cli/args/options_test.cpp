#include "cli/args/options.h"

#include <gtest/gtest.h>

namespace vantorelix::cli {
namespace {

TEST(Options, ARangeIsTwoNumbersInOrder) {
  const auto range = parse_range("-1.5:+20");
  ASSERT_TRUE(range);
  EXPECT_EQ(range->first, -1.5);
  EXPECT_EQ(range->last, 20.0);
  for (const char* wrong : {"", ":", "1:", ":2", "2:1", "1:1", "1:2:3", "a:b", "nan:1", "0:inf", "1 :2"})
    EXPECT_FALSE(parse_range(wrong)) << wrong;
}

}  // namespace
}  // namespace vantorelix::cli
