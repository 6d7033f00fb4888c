#include "cli/args/options.h"

#include <gtest/gtest.h>

namespace vantorelix::cli {
namespace {

TEST(Options, ARangeIsTwoNumbersInOrder) {
  const auto range = parse_range("-1.5:+20");
  ASSERT_TRUE(range);
  EXPECT_EQ(range->first, -1.5);
  EXPECT_EQ(range->last, 20.0);
  for (const char* wrong : {"", ":", "1:x", "x:2", "2:1", "1:1", "1:2:3", "a:b", "nan:1", "0:inf", "1 :2"})
    EXPECT_FALSE(parse_range(wrong)) << wrong;
}

TEST(Options, ARangeMayBeOpenAtOneEnd) {
  const auto from = parse_range("10:"), to = parse_range(":-2.5");
  ASSERT_TRUE(from && to);
  EXPECT_EQ(from->first, 10.0);
  EXPECT_EQ(from->last, std::nullopt);
  EXPECT_EQ(to->first, std::nullopt);
  EXPECT_EQ(to->last, -2.5);
}

}  // namespace
}  // namespace vantorelix::cli
