#include "base/mathematics/mathematics.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include "base/mathematics/mathematics_test_references.h"
#include "tests/support/mathematics_arguments.h"

namespace vantorelix::base {
namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kLargest = std::numeric_limits<double>::max();
constexpr double kSmallest = std::numeric_limits<double>::denorm_min();

// Tells minus zero from zero.
void expect_same(double got, double wanted) {
  EXPECT_EQ(got, wanted);
  EXPECT_EQ(std::signbit(got), std::signbit(wanted)) << wanted;
}

double next(double x) { return std::nextafter(x, kInfinity); }

double ulp(double x) { return next(std::abs(x)) - std::abs(x); }

const support::MathematicsFunction& function_named(const std::string& name) {
  for (const auto& function : support::kMathematics)
    if (name == function.name) return function;
  throw std::out_of_range(name);
}

TEST(Mathematics, ComesWithinAUnitOfTheLastPlaceOfValuesToAHundredDigits) {
  for (const Reference& r : kReferences) {
    const double got = function_named(r.function).value(r.arguments);
    const double error = std::abs((got - r.value) - r.rest) / ulp(r.value);
    EXPECT_LE(error, 1.0) << r.function << " of " << r.arguments[0] << ", " << r.arguments[1] << ", " << r.arguments[2];
  }
}

// A million values of each, of arguments of every kind.
TEST(Mathematics, GivesTheSameBitsFromEveryCompilerAndProcessor) {
  constexpr std::array<std::uint64_t, 9> kHashes = {0xf0055ba53ac03341, 0xda8cfed981213029, 0x58b7b2c63600ad7d,
                                                    0x0a47446e53f0c94c, 0xb39fe3412bac3ed4, 0x4339cd88920ef762,
                                                    0x5bcd5bcb3afa7978, 0xe67eaa4a2e2b63e7, 0xb34f6a14a8e2f593};
  for (std::size_t i = 0; i < kHashes.size(); ++i)
    EXPECT_EQ(support::hash_of(support::kMathematics[i], 1000000), kHashes[i]) << support::kMathematics[i].name;
}

TEST(SineAndCosine, KeepTheSignOfZeroAndWhatIsTiny) {
  for (const double x : {0.0, -0.0, kSmallest, -kSmallest, 1e-310, -2.3e-308, 1e-20}) {
    expect_same(base::sin(x), x);
    expect_same(base::cos(x), 1.0);
  }
}

TEST(SineAndCosine, AreNotANumberWhereTheAngleIsNotFinite) {
  for (const double x : {kInfinity, -kInfinity, kNan}) {
    EXPECT_TRUE(std::isnan(base::sin(x)));
    EXPECT_TRUE(std::isnan(base::cos(x)));
  }
}

TEST(SineAndCosine, AreTheSameTogetherAsAlone) {
  support::Draw draw(3);
  for (int i = 0; i < 10000; ++i) {
    const double x = support::angle(draw)[0];
    const auto [s, c] = base::sin_cos(x);
    expect_same(s, base::sin(x));
    expect_same(c, base::cos(x));
  }
}

TEST(SineAndCosine, AreOddAndEven) {
  support::Draw draw(4);
  for (int i = 0; i < 10000; ++i) {
    const double x = support::angle(draw)[0];
    expect_same(base::sin(-x), -base::sin(x));
    expect_same(base::cos(-x), base::cos(x));
  }
}

// `f` does not fall from `x` on, over a thousand doubles on either side.
template <class F>
void expect_rise(const F& f, double x) {
  for (int i = 0; i < 1000; ++i) x = std::nextafter(x, -kInfinity);
  for (int i = 0; i < 2000; ++i, x = next(x)) ASSERT_LE(f(x), f(next(x))) << std::hexfloat << x;
}

TEST(SineAndCosine, RiseWhereOnePieceMeetsTheNext) {
  for (int k = -15; k < 16; k += 2) expect_rise(base::sin, k * kPi / 64);
  for (int k = -63; k < 0; k += 2) expect_rise(base::cos, k * kPi / 64);
  expect_rise([](double x) { return -base::sin(x); }, 1e5);
}

TEST(ArcSine, IsExactAtItsEnds) {
  expect_same(base::asin(1.0), kPi / 2);
  expect_same(base::asin(-1.0), -kPi / 2);
  expect_same(base::acos(1.0), 0.0);
  expect_same(base::acos(-1.0), kPi);
  expect_same(base::acos(0.0), kPi / 2);
}

TEST(ArcSine, KeepsTheSignOfZeroAndWhatIsTiny) {
  for (const double x : {0.0, -0.0, kSmallest, -1e-310, 1e-20}) expect_same(base::asin(x), x);
}

TEST(ArcSine, IsNotANumberBeyondOne) {
  for (const double x : {next(1.0), -next(1.0), kLargest, kInfinity, -kInfinity, kNan}) {
    EXPECT_TRUE(std::isnan(base::asin(x)));
    EXPECT_TRUE(std::isnan(base::acos(x)));
  }
}

TEST(ArcSine, RisesWhereOnePieceMeetsTheNext) {
  for (const double x : {-0.5, 0.0, 0.5}) {
    expect_rise(base::asin, x);
    expect_rise([](double y) { return -base::acos(y); }, x);
  }
}

TEST(ArcTangent, TellsTheZerosApart) {
  expect_same(base::atan2(0.0, 0.0), 0.0);
  expect_same(base::atan2(-0.0, 0.0), -0.0);
  expect_same(base::atan2(0.0, -0.0), kPi);
  expect_same(base::atan2(-0.0, -0.0), -kPi);
  for (const double x : {kSmallest, 1.0, kLargest, kInfinity}) {
    expect_same(base::atan2(0.0, x), 0.0);
    expect_same(base::atan2(-0.0, x), -0.0);
    expect_same(base::atan2(0.0, -x), kPi);
    expect_same(base::atan2(-0.0, -x), -kPi);
    for (const double zero : {0.0, -0.0}) {
      expect_same(base::atan2(x, zero), kPi / 2);
      expect_same(base::atan2(-x, zero), -kPi / 2);
    }
  }
}

TEST(ArcTangent, TakesInfinitiesAsDirections) {
  for (const double sign : {1.0, -1.0}) {
    expect_same(base::atan2(sign * kInfinity, kInfinity), sign * kPi / 4);
    expect_same(base::atan2(sign * kInfinity, -kInfinity), sign * (3 * (kPi / 4)));
    for (const double finite : {kSmallest, 1.0, kLargest}) {
      expect_same(base::atan2(sign * kInfinity, finite), sign * kPi / 2);
      expect_same(base::atan2(sign * kInfinity, -finite), sign * kPi / 2);
      expect_same(base::atan2(sign * finite, kInfinity), sign * 0.0);
      expect_same(base::atan2(sign * finite, -kInfinity), sign * kPi);
    }
  }
}

TEST(ArcTangent, IsNotANumberWhereASideIsNot) {
  for (const double x : {0.0, -0.0, 1.0, kInfinity, kNan}) {
    EXPECT_TRUE(std::isnan(base::atan2(kNan, x)));
    EXPECT_TRUE(std::isnan(base::atan2(x, kNan)));
  }
}

TEST(ArcTangent, VanishesWithTheQuotientOfItsSides) {
  expect_same(base::atan2(kSmallest, kLargest), 0.0);
  expect_same(base::atan2(-kSmallest, 2.0), -0.0);
  expect_same(base::atan2(kSmallest, 1.0), kSmallest);
  expect_same(base::atan2(kSmallest, -1.0), kPi);
}

TEST(ArcTangent, IsMirroredByTheSignsOfItsSides) {
  support::Draw draw(5);
  for (int i = 0; i < 10000; ++i) {
    const support::Arguments a = support::vector(draw);
    const double y = std::abs(a[0]), x = std::abs(a[1]);
    expect_same(base::atan2(-y, x), -base::atan2(y, x));
    expect_same(base::atan2(-y, -x), -base::atan2(y, -x));
    EXPECT_NEAR(base::atan2(y, -x), kPi - base::atan2(y, x), 1e-15);
  }
}

TEST(ArcTangent, RisesWhereOnePieceMeetsTheNext) {
  for (const double tangent : {0.0, 0.41421356237309503, 1.0, 2.414213562373095}) {
    expect_rise([](double y) { return base::atan2(y, 1.0); }, tangent);
    expect_rise([](double y) { return -base::atan2(y, -1.0); }, tangent == 0.0 ? 0x1p-40 : tangent);
  }
}

TEST(Length, OfWholeSidesIsExact) {
  for (const double scale : {1.0, 0x1p-1060, 0x1p1000}) {
    expect_same(base::hypot(3 * scale, -4 * scale), 5 * scale);
    expect_same(base::hypot(-2 * scale, 3 * scale, 6 * scale), 7 * scale);
  }
}

TEST(Length, OfOneSideIsThatSide) {
  for (const double x : {0.0, kSmallest, 1e-310, 1.1, kLargest, kInfinity}) {
    expect_same(base::hypot(-x, 0.0), x);
    expect_same(base::hypot(-0.0, x), x);
    expect_same(base::hypot(0.0, -x, -0.0), x);
  }
}

TEST(Length, IsInfiniteWithAnInfiniteSideOrWhereItIsTooLong) {
  for (const double other : {0.0, 1.0, kInfinity, kNan}) {
    expect_same(base::hypot(-kInfinity, other), kInfinity);
    expect_same(base::hypot(other, kInfinity), kInfinity);
    expect_same(base::hypot(kNan, other, -kInfinity), kInfinity);
  }
  expect_same(base::hypot(kLargest, kLargest), kInfinity);
  expect_same(base::hypot(kLargest, 1.0, kLargest), kInfinity);
}

TEST(Length, IsNotANumberWhereASideIsNot) {
  for (const double other : {0.0, 1.0, kLargest, kSmallest}) {
    EXPECT_TRUE(std::isnan(base::hypot(kNan, other)));
    EXPECT_TRUE(std::isnan(base::hypot(other, kNan)));
    EXPECT_TRUE(std::isnan(base::hypot(other, kNan, other)));
  }
}

TEST(Length, DoesNotAskForTheSignsOfItsSides) {
  support::Draw draw(6);
  for (int i = 0; i < 10000; ++i) {
    const auto [x, y, z] = support::vector(draw);
    expect_same(base::hypot(-x, y), base::hypot(x, y));
    expect_same(base::hypot(y, x), base::hypot(x, y));
    expect_same(base::hypot(x, -y, -z), base::hypot(x, y, z));
  }
}

TEST(Power, IsExactAtItsEnds) {
  for (const double base : {0.0, kSmallest, 1e-310, 0.7, 1.0, kLargest, kInfinity}) {
    expect_same(base::pow(base, 1.0), base);
    expect_same(base::pow(base, 0.0), 1.0);
  }
  expect_same(base::pow(-0.0, 0.5), 0.0);
  expect_same(base::pow(0.0, 0.5), 0.0);
  expect_same(base::pow(1.0, 0.3), 1.0);
  expect_same(base::pow(kInfinity, 0.5), kInfinity);
}

TEST(Power, OfAHalfIsTheSquareRoot) {
  for (const double base : {4.0, 0.25, 9.0, 0x1p-1074, 0x1p1000}) expect_same(base::pow(base, 0.5), std::sqrt(base));
}

TEST(Power, IsNotANumberForOtherBasesAndExponents) {
  for (const double base : {-1.0, -kInfinity, kNan}) EXPECT_TRUE(std::isnan(base::pow(base, 0.5)));
  for (const double exponent : {-0.5, next(1.0), kInfinity, kNan}) EXPECT_TRUE(std::isnan(base::pow(2.0, exponent)));
}

TEST(Logarithm, IsKnownAtItsEnds) {
  expect_same(base::log(1.0), 0.0);
  expect_same(base::log(0.0), -kInfinity);
  expect_same(base::log(-0.0), -kInfinity);
  expect_same(base::log(kInfinity), kInfinity);
  for (const double x : {-kSmallest, -1.0, -kInfinity, kNan}) EXPECT_TRUE(std::isnan(base::log(x)));
}

TEST(Logarithm, RisesWhereOnePieceMeetsTheNext) {
  for (const double x : {0.5, 0.7071067811865476, 1.0, 1.4142135623730951}) expect_rise(base::log, x);
}

}  // namespace
}  // namespace vantorelix::base
