#include "base/number.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <random>
#include <string>

namespace vantorelix {
namespace {

double parsed(const std::string& text) {
  double value = -12345.0;
  const char* const last = text.data() + text.size();
  EXPECT_EQ(parse_number(text.data(), last, value), last) << text;
  return value;
}

std::size_t length(const std::string& text) {
  double value = 0.0;
  return static_cast<std::size_t>(parse_number(text.data(), text.data() + text.size(), value) - text.data());
}

TEST(Number, IsTheDoubleNearestToItsText) {
  for (const char* text : {"0",
                           "-0",
                           "1",
                           "-1.5",
                           "+2.25",
                           ".5",
                           "5.",
                           "0.1",
                           "-164.35",
                           "1e3",
                           "1E-5",
                           "2.2204460492503131e-16",
                           "9007199254740993",
                           "123456789012345678901234567890",
                           "0.3000000000000000444",
                           "1e22",
                           "1e23",
                           "1.7976931348623157e308",
                           "4.9e-324",
                           "8.41470984807896507e-01",
                           "6.02214076e+23"}) {
    const double expected = std::strtod(text, nullptr);
    EXPECT_EQ(parsed(text), expected) << text;
    EXPECT_EQ(std::signbit(parsed(text)), std::signbit(expected)) << text;
  }
}

TEST(Number, IsTheDoubleNearestToItsTextForRandomDigitsAndExponents) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 200000; ++i) {
    std::string text = std::to_string(random() >> (random() % 64));
    if (random() % 2 != 0) text.insert(random() % (text.size() + 1), ".");
    if (text == ".") continue;
    if (random() % 2 != 0) text += "e" + std::to_string(static_cast<int>(random() % 60) - 30);
    ASSERT_EQ(parsed(text), std::strtod(text.c_str(), nullptr)) << text;
  }
}

TEST(Number, BeyondTheRangeOfADoubleIsInfinityOrZero) {
  EXPECT_EQ(parsed("1e999"), HUGE_VAL);
  EXPECT_EQ(parsed("-1e999"), -HUGE_VAL);
  EXPECT_EQ(parsed("1e-999"), 0.0);
  EXPECT_TRUE(std::signbit(parsed("-1e-999")));
  EXPECT_EQ(parsed("0e999"), 0.0);
  EXPECT_EQ(parsed("1" + std::string(400, '0')), HUGE_VAL);
  EXPECT_EQ(parsed("0." + std::string(400, '0') + "1"), 0.0);
  EXPECT_EQ(parsed("1" + std::string(400, '0') + "e-400"), 1.0);
}

TEST(Number, EndsWhereItsTextEnds) {
  EXPECT_EQ(length("1.5x"), 3u);
  EXPECT_EQ(length("1.5e"), 3u);
  EXPECT_EQ(length("1.5e+"), 3u);
  EXPECT_EQ(length("1.2.3"), 3u);
  EXPECT_EQ(length("1-2"), 1u);
}

TEST(Number, IsNotReadOutOfOtherText) {
  for (const char* text : {"", "-", "+", ".", "x", "e5", "-x", "--1", "+-1", "-+1", "{", " 1"}) {
    EXPECT_EQ(length(text), 0u) << text;
  }
}

TEST(Number, NamesInfinityAndNotANumberSoThatTheyCanBeRefused) {
  EXPECT_TRUE(std::isinf(parsed("inf")));
  EXPECT_TRUE(std::isnan(parsed("nan")));
  EXPECT_TRUE(std::isnan(parsed("-NaN")));
}

}  // namespace
}  // namespace vantorelix
