#include "session/measures/smoothness.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "session/measures/spectrum.h"
#include "tests/support/paths.h"

namespace vantorelix::session {
namespace {

using support::path_at;

constexpr double kPi = std::numbers::pi;

// `count` values of a function of the time, `rate` a second, from `start` on.
template <class Function>
std::vector<double> profile(std::size_t count, double rate, double start, const Function& function) {
  std::vector<double> values;
  for (std::size_t i = 0; i < count; ++i) values.push_back(function(start + static_cast<double>(i) / rate));
  return values;
}

double sparc_of(const Path& path) {
  auto speeds = path.steps;
  for (double& speed : speeds) speed *= path.rate();
  return sparc(speeds, path.rate());
}

double least_jerk_speed(double t) { return t * t * (30.0 + t * (-60.0 + 30.0 * t)); }

TEST(Spectrum, IsTheSumOfItsFormula) {
  for (const std::size_t count : {1u, 2u, 3u, 7u, 8u, 21u}) {
    const auto values = profile(count, 1.0, 0.0, [](double t) { return 2.0 + std::sin(1.7 * t) + 0.1 * t * t; });
    const auto spectrum = padded_spectrum(values);
    const std::size_t all = 2 * (spectrum.size() - 1);
    ASSERT_GE(all, kPadding * count);
    for (std::size_t k = 0; k < spectrum.size(); ++k) {
      double re = 0.0, im = 0.0;
      for (std::size_t n = 0; n < count; ++n) {
        const double angle = -2.0 * kPi * static_cast<double>(k * n % all) / static_cast<double>(all);
        re += values[n] * std::cos(angle);
        im += values[n] * std::sin(angle);
      }
      EXPECT_NEAR(spectrum[k], std::hypot(re, im), 1e-12 * spectrum[0]) << k << " of " << count;
    }
  }
}

// As sparc of monalysa 0.2.1, at its defaults, has them for these profiles.
TEST(Sparc, IsThatOfThePublishedImplementation) {
  EXPECT_NEAR(sparc(profile(101, 100.0, 0.0, least_jerk_speed), 100.0), -1.405829324421465, 1e-9);
  const auto slow = profile(251, 100.0, 0.0, [](double t) { return least_jerk_speed(t / 2.5); });
  EXPECT_NEAR(sparc(slow, 100.0), -1.4024260640051662, 1e-9);
  const auto bell = profile(200, 100.0, -1.0, [](double t) { return std::exp(-5.0 * t * t); });
  EXPECT_NEAR(sparc(bell, 100.0), -1.4140312617104795, 1e-9);
  const auto three = profile(180, 60.0, 0.0, [](double t) {
    return std::exp(-20.0 * (t - 0.5) * (t - 0.5)) + 0.6 * std::exp(-30.0 * (t - 1.4) * (t - 1.4)) +
           0.8 * std::exp(-15.0 * (t - 2.3) * (t - 2.3));
  });
  EXPECT_NEAR(sparc(three, 60.0), -3.411661419601958, 1e-9);
  const auto wave = profile(100, 24.0, 0.0, [](double t) { return 1.0 + 0.5 * std::sin(6.0 * kPi * t); });
  EXPECT_NEAR(sparc(wave, 24.0), -3.4761412981844706, 1e-9);
  // Beyond 10 Hz nothing counts.
  const auto fast = profile(120, 100.0, 0.0, [](double t) { return 1.0 + 0.5 * std::sin(30.0 * kPi * t); });
  EXPECT_NEAR(sparc(fast, 100.0), -2.5324458878578935, 1e-9);
}

TEST(Sparc, OfAMoveOfLeastJerkIsThatOfTheory) {
  EXPECT_NEAR(sparc_of(path_at(support::least_jerk_move(61, 24.0, 10.0), 24.0)), -1.400, 0.005);
  EXPECT_NEAR(sparc_of(path_at(support::least_jerk_move(1001, 240.0, 1e-3), 240.0)), -1.400, 0.005);
}

TEST(Sparc, FallsWithEveryHesitation) {
  const auto stops = [](int count) {
    return sparc(profile(240, 60.0, 0.0, [&](double t) { return 1.0 - std::cos(2.0 * kPi * count * t / 4.0); }), 60.0);
  };
  EXPECT_GT(stops(1), stops(2) + 0.1);
  EXPECT_GT(stops(2), stops(4) + 0.1);
}

// At 12 a second nothing is known beyond 6 Hz.
TEST(Sparc, LooksAtNoFrequencyThatTheRateCannotHold) {
  const auto jitter = profile(64, 12.0, 0.0, [](double t) { return 1.0 + std::cos(12.0 * kPi * t); });
  const double value = sparc(jitter, 12.0);
  // The line goes down from 1 and up again to 1 once, over a length of 1 at least.
  EXPECT_LT(value, -2.0);
  EXPECT_GT(value, -8.0);
}

TEST(Sparc, IsNotKnownOfWhatDoesNotMoveOrIsShort) {
  EXPECT_TRUE(std::isnan(sparc(std::vector<double>(50, 0.0), 24.0)));
  EXPECT_TRUE(std::isnan(sparc(std::vector<double>(5, 1.0), 24.0)));
  EXPECT_TRUE(std::isnan(sparc({}, 24.0)));
  std::vector<double> speeds(50, 1.0);
  speeds[7] = kUnknown;
  EXPECT_TRUE(std::isnan(sparc(speeds, 24.0)));
}

TEST(LogDimensionlessJerk, OfAMoveOfLeastJerkTendsToThatOfTheory) {
  const double theory = -std::log(204.8);
  double before = 2.0;
  for (const std::size_t count : {25u, 101u, 401u, 1601u}) {
    const auto points = support::least_jerk_move(count, 100.0, 30.0);
    const double away = std::abs(log_dimensionless_jerk(path_at(points, 100.0)) - theory);
    EXPECT_LT(away, before / 8.0) << count;
    before = away;
  }
  EXPECT_LT(before, 1e-4);
}

// The velocity exp(-5 t^2) over two seconds: T^3 = 8, its peak 1, the integral of its second derivative squared
// 23.717 sqrt(pi).
TEST(LogDimensionlessJerk, OfABellIsThatOfItsFormula) {
  const double speed = std::sqrt(kPi / 5.0) / 2.0;
  const auto points = support::sampled(401, 200.0, [&](double t) {
    const double along = speed * std::erf(std::sqrt(5.0) * (t - 1.0));
    return Vector{0.6 * along, 0.0, 0.8 * along};
  });
  const double integral = 23.717082451262844 * std::sqrt(kPi);
  EXPECT_NEAR(log_dimensionless_jerk(path_at(points, 200.0)), -std::log(8.0 * integral), 0.002);
}

TEST(LogDimensionlessJerk, DependsOnNeitherSizeNorRate) {
  const auto small = support::least_jerk_move(101, 100.0, 0.01), large = support::least_jerk_move(101, 24.0, 5e4);
  EXPECT_NEAR(log_dimensionless_jerk(path_at(small, 100.0)), log_dimensionless_jerk(path_at(large, 24.0)), 1e-9);
}

TEST(LogDimensionlessJerk, IsNotKnownWithoutJerkOrMotionOrAPosition) {
  const auto line = support::sampled(50, 24.0, [](double t) { return Vector{100.0 + 0.3 * t, 0.7 * t, 0}; });
  EXPECT_TRUE(std::isnan(log_dimensionless_jerk(path_at(line, 24.0))));
  EXPECT_TRUE(std::isnan(log_dimensionless_jerk(path_at(std::vector<Vector>(50), 24.0))));
  EXPECT_TRUE(std::isnan(log_dimensionless_jerk(path_at(support::least_jerk_move(6, 24.0, 1.0), 24.0))));
  EXPECT_TRUE(std::isnan(log_dimensionless_jerk(path_at({}, 24.0))));
  auto points = support::least_jerk_move(50, 24.0, 1.0);
  points[9].z = std::numeric_limits<double>::infinity();
  EXPECT_TRUE(std::isnan(log_dimensionless_jerk(path_at(points, 24.0))));
}

}  // namespace
}  // namespace vantorelix::session
