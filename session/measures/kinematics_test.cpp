#include "session/measures/kinematics.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "tests/support/paths.h"

namespace vantorelix::session {
namespace {

using support::path_at;

constexpr double kPi = std::numbers::pi;
constexpr double kRate = 24.0;

double known(const std::vector<double>& values) {
  return static_cast<double>(std::count_if(values.begin(), values.end(), [](double v) { return !std::isnan(v); }));
}

TEST(Kinematics, ALineAtConstantSpeedHasNoAccelerationJerkOrCurvature) {
  const auto points = support::sampled(49, kRate, [](double t) { return Vector{3 * t, 4 * t, 0}; });
  const Path path = path_at(points, kRate);
  const Travel travel = travel_of(path);
  EXPECT_NEAR(travel.length, 10.0, 1e-12);
  EXPECT_NEAR(travel.mean_speed, 5.0, 1e-12);
  EXPECT_NEAR(travel.top_speed, 5.0, 1e-12);
  EXPECT_NEAR(spacing_variation(path), 0.0, 1e-12);
  const Kinematics k = kinematics_of(path);
  EXPECT_NEAR(extremes_of(k.acceleration, path).top, 0.0, 1e-9);
  EXPECT_NEAR(extremes_of(k.jerk, path).top, 0.0, 1e-7);
  EXPECT_NEAR(extremes_of(k.curvature, path).top, 0.0, 1e-9);
}

// A turn a second on a circle of radius 2: v = 4 pi, a = 8 pi^2, j = 16 pi^3, curvature 1/2, at every place.
TEST(Kinematics, ACircleHasTheAccelerationJerkAndCurvatureOfItsFormula) {
  const auto points = support::helix(49, kRate, 2.0, 0.0);
  const Path path = path_at(points, kRate);
  const Kinematics k = kinematics_of(path);
  const Extremes a = extremes_of(k.acceleration, path), j = extremes_of(k.jerk, path),
                 c = extremes_of(k.curvature, path);
  for (const double got : {a.least, a.mean, a.top}) EXPECT_NEAR(got, 8 * kPi * kPi, 1e-4);
  for (const double got : {j.least, j.mean, j.top}) EXPECT_NEAR(got, 16 * kPi * kPi * kPi, 0.5);
  for (const double got : {c.least, c.mean, c.top}) EXPECT_NEAR(got, 0.5, 1e-5);
  // 48 chords of a circle.
  EXPECT_NEAR(travel_of(path).length, 48 * 2 * 2.0 * std::sin(kPi / 24), 1e-12);
}

// Radius r and c up for each radian: r / (r^2 + c^2).
TEST(Kinematics, AHelixHasTheCurvatureOfItsFormula) {
  for (const double rate : {24.0, 120.0}) {
    const double rise = 3.0, c = rise / (2 * kPi);
    const auto points = support::helix(static_cast<std::size_t>(2 * rate) + 1, rate, 2.0, rise);
    const Path path = path_at(points, rate);
    const Extremes curvature = extremes_of(kinematics_of(path).curvature, path);
    EXPECT_NEAR(curvature.least, 2.0 / (4.0 + c * c), 1e-5);
    EXPECT_NEAR(curvature.top, 2.0 / (4.0 + c * c), 1e-5);
  }
}

// An ellipse turns most at the ends of its long axis, a / b^2, and least at those of the short one, b / a^2.
TEST(Kinematics, TheExtremesOfCurvatureAreAtTheFramesWhereTheyLie) {
  const auto points = support::sampled(97, 48.0, [](double t) {
    return Vector{3 * std::cos(kPi * (t - 0.5)), 0, 2 * std::sin(kPi * (t - 0.5))};
  });
  const Path path = path_at(points, 24.0, 10.0, 0.5);
  const Extremes c = extremes_of(kinematics_of(path).curvature, path);
  EXPECT_NEAR(c.top, 3.0 / 4.0, 1e-6);
  EXPECT_NEAR(c.least, 2.0 / 9.0, 1e-6);
  EXPECT_TRUE(c.top_frame == 22.0 || c.top_frame == 46.0) << c.top_frame;
  EXPECT_EQ(c.least_frame, 34.0);
}

// Of degree five: x = 10 t^3 - 15 t^4 + 6 t^5, a = 60 t - 180 t^2 + 120 t^3, j = 60 - 360 t + 360 t^2.
TEST(Kinematics, AMoveOfLeastJerkHasTheDerivativesOfItsFormula) {
  const auto points = support::least_jerk_move(41, 40.0, 1.0);
  const Path path = path_at(points, 40.0);
  const Kinematics k = kinematics_of(path);
  for (std::size_t i = 3; i + 3 < points.size(); ++i) {
    const double t = static_cast<double>(i) / 40.0;
    EXPECT_NEAR(k.acceleration[i], std::abs(60 * t - 180 * t * t + 120 * t * t * t), 1e-9);
    EXPECT_NEAR(k.jerk[i], std::abs(60 - 360 * t + 360 * t * t), 1e-7);
  }
  EXPECT_EQ(known(k.jerk), 35.0);
}

TEST(Kinematics, TheRateAndTheStepOfTheFramesAreThoseOfTheFile) {
  const auto points = support::helix(97, 48.0, 2.0, 0.0);
  const Path twice = path_at(points, 24.0, 5.0, 0.5), slow = path_at(points, 24.0);
  const double a = extremes_of(kinematics_of(twice).acceleration, twice).top;
  EXPECT_NEAR(a, 8 * kPi * kPi, 1e-5);
  EXPECT_NEAR(extremes_of(kinematics_of(slow).acceleration, slow).top, a / 4, 1e-6);
}

TEST(Kinematics, TremblingOnTheSpotHasNoCurvature) {
  auto points = support::helix(49, kRate, 2.0, 0.0);
  const Vector last = points.back();
  for (int i = 0; i < 20; ++i) points.push_back({last.x + 1e-3 * std::sin(5.0 * i), last.y, last.z + 1e-3 * (i % 2)});
  const Path path = path_at(points, kRate);
  const Kinematics k = kinematics_of(path);
  EXPECT_TRUE(std::isnan(k.curvature[60]));
  EXPECT_GT(k.acceleration[60], 0.0);
  EXPECT_LT(extremes_of(k.curvature, path).top, 2.0);
}

TEST(Kinematics, FewerThanSevenSamplesHaveNoDerivatives) {
  const auto points = support::helix(6, kRate, 2.0, 0.0);
  const Path path = path_at(points, kRate);
  EXPECT_EQ(known(kinematics_of(path).acceleration), 0.0);
  EXPECT_TRUE(std::isnan(extremes_of(kinematics_of(path).jerk, path).top));
  EXPECT_EQ(travel_of(path).steps, 5u);
}

TEST(Kinematics, APositionThatIsNotFiniteMakesUnknownWhatNeedsIt) {
  auto points = support::helix(49, kRate, 2.0, 0.0);
  points[20].y = std::numeric_limits<double>::infinity();
  const Path path = path_at(points, kRate);
  const Kinematics k = kinematics_of(path);
  EXPECT_EQ(known(k.jerk), 49.0 - 6.0 - 7.0);
  EXPECT_TRUE(std::isnan(k.curvature[17]) && std::isnan(k.curvature[23]));
  EXPECT_NEAR(extremes_of(k.curvature, path).top, 0.5, 1e-5);
  EXPECT_EQ(travel_of(path).steps, 46u);
}

// Steps of 1 and 3 by turns: mean 2, deviation 1.
TEST(Spacing, VariesByTheDeviationOfTheStepsOverTheirMean) {
  std::vector<Vector> points = {{0, 0, 0}};
  for (int i = 0; i < 8; ++i) points.push_back({points.back().x + (i % 2 == 0 ? 1.0 : 3.0), 0, 0});
  EXPECT_NEAR(spacing_variation(path_at(points, kRate)), 0.5, 1e-15);
}

TEST(Spacing, IsNotKnownOfWhatDoesNotMove) {
  EXPECT_TRUE(std::isnan(spacing_variation(path_at(std::vector<Vector>(9), kRate))));
  EXPECT_TRUE(std::isnan(spacing_variation(path_at({{0, 0, 0}, {1, 0, 0}}, kRate))));
}

TEST(Travel, TellsWhereItIsFastestFirst) {
  const std::vector<Vector> points = {{0, 0, 0}, {1, 0, 0}, {4, 0, 0}, {4, 3, 0}, {4, 4, 0}};
  const Travel travel = travel_of(path_at(points, 10.0));
  EXPECT_EQ(travel.length, 8.0);
  EXPECT_EQ(travel.slowest, 10.0);
  EXPECT_EQ(travel.top_speed, 30.0);
  EXPECT_EQ(travel.mean_speed, 20.0);
  EXPECT_EQ(travel.top_step, 1u);
}

}  // namespace
}  // namespace vantorelix::session
