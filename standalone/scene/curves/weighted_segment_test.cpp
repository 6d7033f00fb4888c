#include "standalone/scene/curves/weighted_segment.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace vantorelix::standalone {
namespace {

// One coordinate of a Bezier by repeated interpolation.
double bezier(double a, double b, double c, double d, double s) {
  const auto mix = [s](double p, double q) { return p + (q - p) * s; };
  const double ab = mix(a, b), bc = mix(b, c), cd = mix(c, d);
  return mix(mix(ab, bc), mix(bc, cd));
}

TEST(WeightedSegment, PassesThroughThePointsOfItsBezier) {
  // Control points at a third of the tangents: (0, 0), (2, 5), (24 - 12, 7 + 1), (24, 7).
  const WeightedSegment segment(24.0, 7.0, {6.0, 15.0}, {36.0, -3.0});
  for (int i = 0; i <= 50; ++i) {
    const double s = i / 50.0;
    EXPECT_NEAR(segment.at(bezier(0.0, 2.0, 12.0, 24.0, s)), bezier(0.0, 5.0, 8.0, 7.0, s), 1e-12) << s;
  }
}

TEST(WeightedSegment, SymmetricHandlesMeetInTheMiddle) {
  const WeightedSegment segment(10.0, 4.0, {25.0, 1.0}, {25.0, 1.0});
  EXPECT_NEAR(segment.at(5.0), 2.0, 1e-14);
  for (double t = 0.0; t <= 5.0; t += 0.25) EXPECT_NEAR(segment.at(5.0 - t) + segment.at(5.0 + t), 4.0, 1e-12) << t;
}

TEST(WeightedSegment, ReachesOfAThirdMakeTimeEven) {
  const WeightedSegment even(12.0, 3.0, {12.0, 6.0}, {12.0, 0.0});
  ASSERT_TRUE(even.is_time_even());
  const auto [c1, c2, c3] = even.as_cubic();
  // Slopes 0.5 and 0 over 12 frames and a rise of 3: Hermite's form at the middle is rise / 2 + 12 * 0.5 / 8.
  EXPECT_NEAR(((c3 * 6.0 + c2) * 6.0 + c1) * 6.0, 1.5 + 0.75, 1e-14);
  EXPECT_NEAR(even.at(6.0), 1.5 + 0.75, 1e-14);
  EXPECT_FALSE(WeightedSegment(12.0, 3.0, {12.1, 6.0}, {12.0, 0.0}).is_time_even());
}

TEST(WeightedSegment, HandlesPastTheirSegmentKeepTheirSlopeWhenShortened) {
  // The out handle reaches 5/3 of the segment and is cut to 4/3, the in handle to 1/3: x controls 0, 40, 20, 30.
  const WeightedSegment segment(30.0, 0.0, {150.0, 15.0}, {90.0, 0.0});
  for (int i = 0; i <= 20; ++i) {
    const double s = i / 20.0;
    EXPECT_NEAR(segment.at(bezier(0.0, 40.0, 20.0, 30.0, s)), bezier(0.0, 4.0, 0.0, 0.0, s), 1e-5) << s;
  }
}

TEST(WeightedSegment, TheOutHandleHasItsWayAndTheInHandleYields) {
  // Out at 1.2 of the segment; in wants 1, and may have (0.8 + sqrt(0.64 - 0.16)) / 2 of it.
  const WeightedSegment segment(1.0, 0.0, {3.6, 0.0}, {3.0, 3.0});
  const double in = (0.8 + std::sqrt(0.48)) / 2.0;
  for (int i = 0; i <= 20; ++i) {
    const double s = i / 20.0;
    EXPECT_NEAR(segment.at(bezier(0.0, 1.2, 1.0 - in, 1.0, s)), bezier(0.0, 0.0, -in, 0.0, s), 1e-5) << s;
  }
}

TEST(WeightedSegment, TimeNeverRunsBackwardsWhateverTheHandles) {
  for (double out = -0.5; out <= 3.0; out += 0.03125) {
    for (double in = -0.5; in <= 3.0; in += 0.03125) {
      const Reach reach = keep_time_forward({out, in});
      double slowest = 0.0;
      for (int i = 0; i <= 256; ++i) {
        const double s = i / 256.0;
        const double speed =
            reach.out * (1 - s) * (1 - s) + 2 * (1 - reach.in - reach.out) * s * (1 - s) + reach.in * s * s;
        slowest = std::min(slowest, speed);
      }
      ASSERT_GE(slowest, -1e-15) << out << ' ' << in;
    }
  }
}

TEST(WeightedSegment, HandlesThatLetTimeRunAreLeftAlone) {
  for (const Reach fine : {Reach{0.0, 0.0}, Reach{1.0, 1.0}, Reach{0.2, 0.9}, Reach{1.2, 0.5}, Reach{0.5, 1.2}}) {
    const Reach kept = keep_time_forward(fine);
    EXPECT_EQ(kept.out, fine.out);
    EXPECT_EQ(kept.in, fine.in);
  }
  // With the first key's handle at 1.2, the second's must reach at least (0.8 - sqrt(0.48)) / 2.
  EXPECT_NEAR(keep_time_forward({1.2, 0.0}).in, (0.8 - std::sqrt(0.48)) / 2.0, 1e-15);
}

TEST(WeightedSegment, VerticalHandlesAreSolvedToTheLastDigits) {
  // Both control points of time at its ends: time is 3s^2 - 2s^3, the value rises evenly with s.
  const WeightedSegment segment(1.0, 1.0, {0.0, 1.0}, {0.0, 1.0});
  for (const double s : {1e-7, 1e-3, 0.1, 0.4, 0.5, 0.9, 0.999})
    EXPECT_NEAR(segment.at((3.0 - 2.0 * s) * s * s), s, 1e-12) << s;
  // All of time's control points but the last at the start: time is s^3.
  const WeightedSegment cube(1.0, 1.0, {0.0, 1.0}, {3.0, 1.0});
  for (const double s : {1e-8, 1e-4, 0.1, 0.5, 0.99}) EXPECT_NEAR(cube.at(s * s * s), s, 1e-12) << s;
}

TEST(WeightedSegment, ARunawayHandleStaysFinite) {
  const WeightedSegment segment(1e-300, 1.0, {1e300, 1e300}, {0.0, 1.0});
  EXPECT_TRUE(std::isfinite(segment.at(5e-301)));
}

}  // namespace
}  // namespace vantorelix::standalone
