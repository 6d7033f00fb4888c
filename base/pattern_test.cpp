#include "base/pattern.h"

#include <gtest/gtest.h>

#include <string>

namespace vantorelix {
namespace {

TEST(Pattern, StandsForTheWholeText) {
  EXPECT_TRUE(matches("hip", "hip"));
  EXPECT_FALSE(matches("hip", "hips"));
  EXPECT_FALSE(matches("hips", "hip"));
  EXPECT_TRUE(matches("", ""));
  EXPECT_FALSE(matches("", "a"));
}

TEST(Pattern, AStarIsAnyBytesAndAQuestionMarkIsOne) {
  EXPECT_TRUE(matches("End Site*", "End Site of hip"));
  EXPECT_TRUE(matches("*_ctrl", "arm_ctrl_ctrl"));
  EXPECT_TRUE(matches("a*b?d", "axxbbcd"));
  EXPECT_TRUE(matches("**", ""));
  EXPECT_FALSE(matches("?", ""));
  EXPECT_FALSE(matches("a*b", "axxc"));
}

TEST(Pattern, OfManyStarsTakesNoLongerThanTheProductOfTheLengths) {
  std::string pattern;
  for (int i = 0; i < 200; ++i) pattern += "*a";
  EXPECT_FALSE(matches(pattern + "b", std::string(20000, 'a')));
}

}  // namespace
}  // namespace vantorelix
