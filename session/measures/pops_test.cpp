#include "session/measures/pops.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "tests/support/paths.h"

namespace vantorelix::session {
namespace {

using support::path_at;
using testing::IsEmpty;
using testing::SizeIs;

// A swing with noise as captured motion has it, the same on every system.
std::vector<Vector> noisy_swing(double noise) {
  std::mt19937 random(7);
  const auto off = [&] { return noise * (static_cast<double>(random()) / 4294967296.0 - 0.5); };
  auto points = support::helix(200, 60.0, 20.0, 5.0);
  for (Vector& p : points) p = {p.x + off(), p.y + off(), p.z + off()};
  return points;
}

TEST(Pops, AStepThatWasPutInIsFirst) {
  for (const std::size_t at : {2u, 57u, 120u, 197u}) {
    auto points = noisy_swing(0.05);
    points[at].y += 1.5;
    const auto pops = pops_of(path_at(points, 60.0, 100.0));
    ASSERT_FALSE(pops.empty());
    EXPECT_EQ(pops[0].frame, 100.0 + static_cast<double>(at));
    EXPECT_NEAR(pops[0].distance, 1.5, 0.1);
    EXPECT_GT(pops[0].score, 10 * pops[1].score);
  }
}

TEST(Pops, TwoAreRankedByHowFarOffTheyAre) {
  auto points = noisy_swing(0.05);
  points[40].x += 1.0;
  points[90].x -= 3.0;
  const auto pops = pops_of(path_at(points, 60.0));
  EXPECT_EQ(pops[0].frame, 90.0);
  EXPECT_EQ(pops[1].frame, 40.0);
  EXPECT_NEAR(pops[0].distance / pops[1].distance, 3.0, 0.2);
}

// The same deviation counts for less the noisier the path is.
TEST(Pops, AreMeasuredByThePathsOwnNoise) {
  const auto score = [](double noise) {
    auto points = noisy_swing(noise);
    points[57].y += 5.0;
    return pops_of(path_at(points, 60.0))[0].score;
  };
  EXPECT_NEAR(score(1.0) / score(2.0), 2.0, 0.4);
}

// The residual of a step by one to the side of its neighbours, which are exactly on a line: 1, and the divisor is a
// hundredth of the mean step.
TEST(Pops, AreBoundedOnAPathWithoutNoise) {
  auto points = support::sampled(101, 10.0, [](double t) { return Vector{10 * t, 0, 0}; });
  points[50].y = 1.0;
  const auto pops = pops_of(path_at(points, 10.0));
  ASSERT_THAT(pops, SizeIs(1));
  EXPECT_EQ(pops[0].frame, 50.0);
  EXPECT_NEAR(pops[0].distance, 1.0, 1e-12);
  const double mean = (98.0 + 2.0 * std::sqrt(2.0)) / 100.0;
  EXPECT_NEAR(pops[0].score, 1.0 / (0.01 * mean), 1e-9);
}

// Samples that are still for most of the time make the median 0.
TEST(Pops, OfAPathThatHoldsForMostOfTheTimeStayBounded) {
  std::vector<Vector> points(60, Vector{100, 0, 0});
  for (const Vector& p : support::least_jerk_move(25, 24.0, 50.0)) points.push_back({100 + p.x, 0, 0});
  const auto pops = pops_of(path_at(points, 24.0));
  ASSERT_FALSE(pops.empty());
  EXPECT_LT(pops[0].score, 5.0);
}

TEST(Pops, AJumpOfAllThatFollowsIsOne) {
  auto points = support::sampled(60, 24.0, [](double t) { return Vector{t, 0, 0}; });
  for (std::size_t i = 30; i < points.size(); ++i) points[i].z += 2.0;
  const auto pops = pops_of(path_at(points, 24.0));
  EXPECT_TRUE(pops[0].frame == 29.0 || pops[0].frame == 30.0) << pops[0].frame;
  // Half of it: each side is drawn to the other by its neighbours.
  EXPECT_NEAR(pops[0].distance, 1.0, 1e-9);
}

TEST(Pops, AreAtMostTen) { EXPECT_THAT(pops_of(path_at(noisy_swing(0.1), 60.0)), SizeIs(kMostPops)); }

TEST(Pops, AreNotKnownOfShortPathsAndOfWhatDoesNotMove) {
  EXPECT_THAT(pops_of(path_at({{0, 0, 0}, {1, 0, 0}, {9, 0, 0}, {3, 0, 0}}, 24.0)), IsEmpty());
  EXPECT_THAT(pops_of(path_at(std::vector<Vector>(50, Vector{1, 2, 3}), 24.0)), IsEmpty());
  EXPECT_THAT(pops_of(path_at({}, 24.0)), IsEmpty());
}

TEST(Pops, APositionThatIsNotFiniteIsNone) {
  auto points = noisy_swing(0.05);
  points[100].x = std::numeric_limits<double>::quiet_NaN();
  points[50].y += 1.0;
  const auto pops = pops_of(path_at(points, 60.0));
  EXPECT_EQ(pops[0].frame, 50.0);
  for (const Pop& pop : pops) EXPECT_TRUE(pop.frame < 98.0 || pop.frame > 102.0);
}

}  // namespace
}  // namespace vantorelix::session
