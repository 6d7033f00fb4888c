#include "standalone/scene/curves/tangents.h"

#include <gtest/gtest.h>

#include <vector>

namespace vantorelix::standalone {
namespace {

constexpr double kRate = 24.0;

Key key(double time, double value, Tangent tangent) {
  return {.time = time, .value = value, .in = tangent, .out = tangent};
}

struct Slopes {
  double in;
  double out;
};

// Of the middle one of three keys at frames 0, 10 and 30.
Slopes between(double before, double value, double after, Tangent tangent) {
  const Key keys[] = {key(0, before, tangent), key(10, value, tangent), key(30, after, tangent)};
  const KeyPlace place = {&keys[0], keys[1], &keys[2]};
  return {in_slope(place, kRate), out_slope(place, kRate)};
}

Slopes at_start(double value, double after, Tangent tangent) {
  const Key keys[] = {key(0, value, tangent), key(10, after, tangent)};
  const KeyPlace place = {nullptr, keys[0], &keys[1]};
  return {in_slope(place, kRate), out_slope(place, kRate)};
}

Slopes at_end(double before, double value, Tangent tangent) {
  const Key keys[] = {key(0, before, tangent), key(10, value, tangent)};
  const KeyPlace place = {&keys[0], keys[1], nullptr};
  return {in_slope(place, kRate), out_slope(place, kRate)};
}

#define EXPECT_SLOPES(slopes, expected_in, expected_out) \
  do {                                                   \
    const Slopes found = (slopes);                       \
    EXPECT_DOUBLE_EQ(found.in, expected_in);             \
    EXPECT_DOUBLE_EQ(found.out, expected_out);           \
  } while (false)

TEST(Tangents, LinearSidesPointAtTheirNeighbours) {
  EXPECT_SLOPES(between(0, 5, 25, Tangent::linear), 0.5, 1.0);
  EXPECT_SLOPES(at_start(3, 4, Tangent::linear), 0.1, 0.1);
  EXPECT_SLOPES(at_end(3, 4, Tangent::linear), 0.1, 0.1);
}

TEST(Tangents, SplineRunsParallelToItsNeighbours) {
  EXPECT_SLOPES(between(0, 99, 60, Tangent::spline), 2.0, 2.0);
  EXPECT_SLOPES(at_start(0, 5, Tangent::spline), 0.5, 0.5);
  EXPECT_SLOPES(at_end(0, 5, Tangent::spline), 0.5, 0.5);
}

TEST(Tangents, FlatSlowAndStepSidesHaveNoSlope) {
  for (const Tangent tangent : {Tangent::flat, Tangent::slow, Tangent::step, Tangent::step_next})
    EXPECT_SLOPES(between(0, 5, 25, tangent), 0.0, 0.0);
}

TEST(Tangents, FastIsTwiceAsSteepAsTheLine) { EXPECT_SLOPES(between(0, 5, 25, Tangent::fast), 1.0, 2.0); }

TEST(Tangents, ClampedIsASplineExceptTowardsANeighbourOfAlmostEqualValue) {
  EXPECT_SLOPES(between(0, 5, 60, Tangent::clamped), 2.0, 2.0);
  EXPECT_SLOPES(between(5, 5, 65, Tangent::clamped), 0.0, 2.0);
  EXPECT_SLOPES(between(0, 6, 6, Tangent::clamped), 0.2, 0.0);
  EXPECT_SLOPES(between(0, 6, 6.04, Tangent::clamped), 6.04 / 30, (6.04 - 6.0) / 20);
  EXPECT_SLOPES(between(0, 6, 6.06, Tangent::clamped), 6.06 / 30, 6.06 / 30);
  EXPECT_SLOPES(at_start(0, 5, Tangent::clamped), 0.5, 0.5);
}

TEST(Tangents, AutomaticAndWhatBehavesLikeItAreFlatAtEndsAndTurns) {
  for (const Tangent tangent : {Tangent::automatic, Tangent::plateau, Tangent::global, Tangent::automatic_mix,
                                Tangent::automatic_ease, Tangent::automatic_custom}) {
    EXPECT_SLOPES(at_start(0, 5, tangent), 0.0, 0.0);
    EXPECT_SLOPES(at_end(0, 5, tangent), 0.0, 0.0);
    EXPECT_SLOPES(between(0, 5, 1, tangent), 0.0, 0.0);
    EXPECT_SLOPES(between(0, -5, 1, tangent), 0.0, 0.0);
    EXPECT_SLOPES(between(5, 5, 9, tangent), 0.0, 0.0);
    EXPECT_SLOPES(between(0, 10, 60, tangent), 2.0, 2.0);
  }
}

TEST(Tangents, AutomaticReachesNoFurtherThanItsNeighboursValues) {
  // Towards 1 ten frames before: three times 0.1 at most. Towards 1 twenty frames after: three times 0.05.
  EXPECT_SLOPES(between(0, 1, 61, Tangent::automatic), 0.3, 0.3);
  EXPECT_SLOPES(between(60, 1, 0, Tangent::automatic), -0.15, -0.15);
}

TEST(Tangents, FixedSlopesAreGivenInSeconds) {
  Key fixed = key(0, 0, Tangent::fixed);
  fixed.in_x = 0.5, fixed.in_y = 6.0;
  fixed.out_x = 0.25, fixed.out_y = -6.0;
  const KeyPlace place = {nullptr, fixed, nullptr};
  EXPECT_DOUBLE_EQ(in_slope(place, kRate), 0.5);
  EXPECT_DOUBLE_EQ(out_slope(place, kRate), -1.0);
}

TEST(Tangents, VerticalFixedTangentsHaveTheSteepestSlope) {
  Key fixed = key(0, 0, Tangent::fixed);
  fixed.in_x = 0.0, fixed.in_y = 2.0;
  fixed.out_x = 1e-9, fixed.out_y = -1.0;
  const KeyPlace place = {nullptr, fixed, nullptr};
  EXPECT_DOUBLE_EQ(in_slope(place, 1.0), 5729577.9485111479);
  EXPECT_DOUBLE_EQ(out_slope(place, 1.0), -5729577.9485111479);
  fixed.in_y = 0.0;
  EXPECT_EQ(in_slope(place, 1.0), 0.0) << "neither up nor down";
}

TEST(Tangents, WeightedTangentsReachTheNeighbourUnlessFixed) {
  const Key keys[] = {key(0, 0, Tangent::spline), key(10, 5, Tangent::spline), key(30, 60, Tangent::spline)};
  const KeyPlace place = {&keys[0], keys[1], &keys[2]};
  const TangentVector in = in_vector(place, kRate), out = out_vector(place, kRate);
  EXPECT_DOUBLE_EQ(in.x, 10.0);
  EXPECT_DOUBLE_EQ(in.y, 20.0);
  EXPECT_DOUBLE_EQ(out.x, 20.0);
  EXPECT_DOUBLE_EQ(out.y, 40.0);

  Key fixed = key(10, 5, Tangent::fixed);
  fixed.in_x = 0.5, fixed.in_y = 3.0;
  fixed.out_x = 2.0, fixed.out_y = -1.0;
  const KeyPlace given = {&keys[0], fixed, &keys[2]};
  EXPECT_DOUBLE_EQ(in_vector(given, kRate).x, 12.0);
  EXPECT_DOUBLE_EQ(in_vector(given, kRate).y, 3.0);
  EXPECT_DOUBLE_EQ(out_vector(given, kRate).x, 48.0);
  EXPECT_DOUBLE_EQ(out_vector(given, kRate).y, -1.0);
}

}  // namespace
}  // namespace vantorelix::standalone
