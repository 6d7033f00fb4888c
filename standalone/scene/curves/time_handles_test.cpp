#include "standalone/scene/curves/time_handles.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace vantorelix::standalone {
namespace {

double time_at(const TimeHandles& time, double u) {
  const double rest = 1.0 - u;
  return 3.0 * u * rest * rest * time.out + 3.0 * u * u * rest * (1.0 - time.in) + u * u * u;
}

double away(const TimeHandles& a, const TimeHandles& b) { return std::hypot(a.out - b.out, a.in - b.in); }

TEST(TimeHandles, OfThirdsMakeTimeRunEvenly) {
  for (const double part : {0.0, 0.125, 0.5, 0.75, 1.0})
    EXPECT_NEAR(parameter_after({1.0 / 3.0, 1.0 / 3.0}, part), part, 1e-15);
}

TEST(TimeHandles, SlideToTheNearestWithWhichTheWantedPlaceIsReachedInTime) {
  std::mt19937 engine(7);
  std::uniform_real_distribution<double> dice(0.0, 1.0);
  int reached = 0;
  for (int round = 0; round < 2000; ++round) {
    const TimeHandles from = {dice(engine), dice(engine)};
    const double u = dice(engine), part = dice(engine);
    const TimeHandles to = slid(from, u, part);
    ASSERT_GE(std::min(to.out, to.in), 0.0);
    ASSERT_LE(std::max(to.out, to.in), 1.0);
    const double miss = std::abs(time_at(to, u) - part);
    // No other handles of a grid do better: none come nearer in time, and of those that reach it none lie nearer.
    for (double out = kShortestHandle; out <= 1.0; out += 0.0333) {
      for (double in = kShortestHandle; in <= 1.0; in += 0.0333)
        ASSERT_GE(std::abs(time_at({out, in}, u) - part), miss - 1e-9) << round;
      const double in = (part - time_at({out, 0.0}, u)) / (time_at({0.0, 1.0}, u) - time_at({0.0, 0.0}, u));
      const bool reaches = miss < 1e-9 && in >= kShortestHandle && in <= 1.0;
      ASSERT_LE(away(from, to), (reaches ? away(from, {out, in}) : 2.0) + 1e-6);
    }
    reached += miss < 1e-12 ? 1 : 0;
  }
  EXPECT_GT(reached, 500);
  EXPECT_LT(reached, 2000);
}

TEST(TimeHandles, StayAboveTheShortestUnlessTheyAreShorterAlready) {
  EXPECT_EQ(slid({0.3, 0.3}, 0.9, 0.01).out, kShortestHandle);
  EXPECT_EQ(slid({0.0, 0.3}, 0.9, 0.01).out, 0.0);
  EXPECT_EQ(slid({0.3, 0.3}, 0.1, 0.99).in, kShortestHandle);
}

TEST(TimeHandles, GoAsFarAsTheyCanWhereAKeyIsWanted) {
  EXPECT_EQ(slid({0.3, 0.3}, 0.0, 0.5).out, 1.0);
  EXPECT_EQ(slid({0.3, 0.3}, 0.0, 0.5).in, kShortestHandle);
  EXPECT_EQ(slid({0.3, 0.3}, 1.0, 0.5).in, 1.0);
  EXPECT_EQ(slid({0.3, 0.3}, 1.0, 0.5).out, kShortestHandle);
}

AnimCurve curve_of(Tangent sort, bool weighted, double x = 1.0, double y = 0.0) {
  AnimCurve curve;
  Key first{.time = 0.0, .value = 2.0, .in = sort, .out = sort, .out_x = x, .out_y = y};
  Key second{.time = 12.0, .value = 8.0, .in = sort, .out = sort, .in_x = x, .in_y = y};
  curve.assign({first, second}, weighted, Infinity::constant, Infinity::constant);
  return curve;
}

TEST(TimeHandles, OfACurveWithoutWeightsAreThirdsWhateverItsTangents) {
  const SegmentBezier bezier = bezier_after(curve_of(Tangent::fixed, false, 2.0, 8.0), 0);  // 4 a second, 24 frames
  EXPECT_DOUBLE_EQ(bezier.time.out, 1.0 / 3.0);
  EXPECT_DOUBLE_EQ(bezier.time.in, 1.0 / 3.0);
  EXPECT_DOUBLE_EQ(bezier.out_y, 2.0);
  EXPECT_FALSE(bezier.line);
}

TEST(TimeHandles, OfALineLieAlongIt) {
  const SegmentBezier bezier = bezier_after(curve_of(Tangent::linear, true), 0);
  EXPECT_TRUE(bezier.line);
  EXPECT_DOUBLE_EQ(bezier.time.out, 1.0 / 3.0);
  EXPECT_DOUBLE_EQ(bezier.out_y, 6.0);
}

TEST(TimeHandles, OfWeightsThatWouldTakeTimeBackAreThoseThatEvaluationHas) {
  const SegmentBezier bezier = bezier_after(curve_of(Tangent::fixed, true, 3.0, 9.0), 0);  // 72 frames of 12
  EXPECT_TRUE(bezier.cut);
  EXPECT_DOUBLE_EQ(bezier.time.out, 4.0 / 3.0);
  EXPECT_DOUBLE_EQ(bezier.out_y, 6.0);
  EXPECT_FALSE(bezier_after(curve_of(Tangent::fixed, true, 1.5, 9.0), 0).cut);
}

}  // namespace
}  // namespace vantorelix::standalone
