#include "standalone/scene/transforms/rotation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "standalone/scene/transforms/rotation_blend.h"

namespace vantorelix::standalone {
namespace {

// Distance of two doubles in units of the last place of the second; tiny results count against the smallest normal.
double ulps(double got, long double wanted) {
  const double nearest = static_cast<double>(wanted);
  const double unit = std::nextafter(std::abs(nearest), std::numeric_limits<double>::infinity()) - std::abs(nearest);
  return static_cast<double>(std::abs(static_cast<long double>(got) - wanted) / static_cast<long double>(unit));
}

double worst_error(double x) {
  const SinCos t = sin_cos(x, -x, 0.5 * x);
  const long double wide = x;
  return std::max({ulps(t.sin[0], std::sin(wide)), ulps(t.cos[0], std::cos(wide)), ulps(t.sin[1], std::sin(-wide)),
                   ulps(t.cos[1], std::cos(-wide)), ulps(t.sin[2], std::sin(0.5L * wide)),
                   ulps(t.cos[2], std::cos(0.5L * wide))});
}

TEST(SinCos, StaysWithinAUnitOfTheLastPlaceNearZero) {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> angle(-10.0, 10.0);
  double worst = 0.0;
  for (int i = 0; i < 200000; ++i) worst = std::max(worst, worst_error(angle(random)));
  EXPECT_LT(worst, 1.0);
}

TEST(SinCos, StaysWithinAUnitOfTheLastPlaceForAnglesOfEverySize) {
  std::mt19937_64 random(2);
  std::uniform_real_distribution<double> exponent(-300.0, 15.0);
  double worst = 0.0;
  for (int i = 0; i < 200000; ++i) worst = std::max(worst, worst_error(std::pow(10.0, exponent(random))));
  EXPECT_LT(worst, 1.0);
}

TEST(SinCos, StaysWithinAUnitOfTheLastPlaceAroundQuarterTurns) {
  double worst = 0.0;
  for (int k = -60000; k <= 60000; k += 7) {
    double x = k * 1.57079632679489661923;
    for (int step = 0; step < 3; ++step) {
      worst = std::max(worst, worst_error(x));
      x = std::nextafter(x, 1e9);
    }
  }
  EXPECT_LT(worst, 1.0);
}

TEST(SinCos, GivesExactValuesAtZero) {
  const SinCos t = sin_cos(0.0, 0.0, 0.0);
  EXPECT_EQ(t.sin[0], 0.0);
  EXPECT_EQ(t.cos[0], 1.0);
}

TEST(SinCos, PassesWhatIsNotFiniteThroughAsNotANumber) {
  const SinCos t = sin_cos(std::numeric_limits<double>::infinity(), std::nan(""), 1.0);
  EXPECT_TRUE(std::isnan(t.sin[0]));
  EXPECT_TRUE(std::isnan(t.cos[1]));
  EXPECT_NEAR(t.sin[2], std::sin(1.0), 1e-15);
}

Basis about(std::size_t axis, double angle) {
  const std::size_t a = (axis + 1) % 3, b = (axis + 2) % 3;
  Basis m = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
  m[a][a] = m[b][b] = std::cos(angle);
  m[a][b] = std::sin(angle);
  m[b][a] = -std::sin(angle);
  return m;
}

TEST(Rotation, TurnsAboutTheAxesInTheOrderThatItIsGiven) {
  const double angles[3] = {0.3, -1.1, 2.4};
  const std::size_t orders[6][3] = {{0, 1, 2}, {1, 2, 0}, {2, 0, 1}, {0, 2, 1}, {1, 0, 2}, {2, 1, 0}};
  for (int order = 0; order < 6; ++order) {
    const auto& o = orders[order];
    const Basis wanted =
        product(product(about(o[0], angles[o[0]]), about(o[1], angles[o[1]])), about(o[2], angles[o[2]]));
    const Basis got = rotation(angles[0], angles[1], angles[2], order);
    for (std::size_t i = 0; i < 3; ++i)
      for (std::size_t j = 0; j < 3; ++j) EXPECT_NEAR(got[i][j], wanted[i][j], 1e-14) << order << i << j;
  }
}

void expect_same_rotation(const Angles& a, const Angles& b, int order) {
  const Basis x = rotation(a[0], a[1], a[2], order), y = rotation(b[0], b[1], b[2], order);
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j < 3; ++j) EXPECT_NEAR(x[i][j], y[i][j], 1e-7);
}

TEST(RotationBlend, MeetsBothEnds) {
  for (int order = 0; order < 6; ++order) {
    const Angles a = {0.4, -0.9, 1.7}, b = {-2.1, 0.3, 0.8};
    expect_same_rotation(blend_rotations(a, b, 0.0, order), a, order);
    expect_same_rotation(blend_rotations(a, b, 1.0, order), b, order);
    expect_same_rotation(blend_rotations(a, b, 1e-9, order), a, order);
    expect_same_rotation(blend_rotations(a, b, 1.0 - 1e-9, order), b, order);
  }
}

TEST(RotationBlend, GoesHalfTheAngleAtHalfTheWeight) {
  for (int order = 0; order < 6; ++order)
    expect_same_rotation(blend_rotations({0.2, 0, 0}, {1.2, 0, 0}, 0.5, order), {0.7, 0, 0}, order);
}

TEST(RotationBlend, TakesTheShorterWay) {
  const double turn = 3.14159265358979323846;
  expect_same_rotation(blend_rotations({0, 0, 0.9 * turn}, {0, 0, -0.9 * turn}, 0.5, 0), {0, 0, turn}, 0);
}

TEST(RotationBlend, SurvivesAnAxisThatHidesAnother) {
  const double quarter = 1.57079632679489661923;
  expect_same_rotation(blend_rotations({0.3, quarter, 0}, {0.3, quarter, 0}, 0.5, 0), {0.3, quarter, 0}, 0);
}

}  // namespace
}  // namespace vantorelix::standalone
