#include "base/number_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

namespace vantorelix {
namespace {

TEST(NumberText, NumbersReadBackToTheSameDouble) {
  for (const double value : {0.1, 1.0 / 3.0, 5e-324, 1.7976931348623157e308, 12345678.9, 1e16})
    EXPECT_EQ(std::strtod(number_text(value).c_str(), nullptr), value);
  EXPECT_EQ(number_text(-0.0), "-0.0");
}

TEST(NumberText, FixedDecimalsEndWithTheLastDigitThatCounts) {
  EXPECT_EQ(fixed(1.25, 3), "1.25");
  EXPECT_EQ(fixed(2.0, 3), "2");
  EXPECT_EQ(fixed(-0.0001, 3), "0");
}

TEST(NumberText, PeopleGetAboutAsManyDigitsAsTheyAskFor) {
  EXPECT_EQ(readable(0.0123456), "0.01235");
  EXPECT_EQ(readable(12.3), "12.3");
  EXPECT_EQ(readable(12345.6), "12346");
  EXPECT_EQ(readable(1000.0), "1000");
  EXPECT_EQ(readable(999.9996, 6), "1000");
  EXPECT_EQ(readable(0.001), "0.001");
  EXPECT_EQ(readable(-0.00999996, 4), "-0.01");
  EXPECT_EQ(readable(1.234e9, 2), "1.2e+09");
  EXPECT_EQ(readable(INFINITY), "inf");
}

TEST(NumberText, OneOfAThingHasNoPlural) {
  EXPECT_EQ(counted(1, "trail"), "1 trail");
  EXPECT_EQ(counted(0, "trail"), "0 trails");
}

}  // namespace
}  // namespace vantorelix
