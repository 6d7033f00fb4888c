#include "standalone/scene/transforms/quaternion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace vantorelix::standalone {
namespace {

constexpr double kPi = std::numbers::pi;

Basis rotation_by(const Angles& a, int order) { return rotation(a[0], a[1], a[2], order); }

double largest_difference(const Basis& a, const Basis& b) {
  double worst = 0.0;
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j < 3; ++j) worst = std::max(worst, std::abs(a[i][j] - b[i][j]));
  return worst;
}

TEST(Quaternion, TurnsAsItsAnglesDoInEveryOrder) {
  for (int order = 0; order < 6; ++order) {
    const Angles angles = {0.3, -1.1, 2.0};
    EXPECT_LE(largest_difference(basis_of(quaternion_of(angles, order)), rotation_by(angles, order)), 1e-15) << order;
  }
}

TEST(Quaternion, GivesAnglesOfTheSameMatrixAtAndNearTheGimbalLock) {
  for (int order = 0; order < 6; ++order) {
    for (const double off : {1.0, 1e-3, 1e-6, 1e-8, 1e-9, 1e-12, 1e-15, 0.0}) {
      for (const double side : {-1.0, 1.0}) {
        Angles angles = {0.4, -1.3, 2.2};
        static constexpr int kMiddle[] = {1, 2, 0, 2, 0, 1};
        angles[static_cast<std::size_t>(kMiddle[order])] = side * (kPi / 2 - off);
        const Basis wanted = rotation_by(angles, order);
        const Angles found = angles_of(wanted, order);
        EXPECT_LE(largest_difference(rotation_by(found, order), wanted), 2e-15) << order << " " << off;
      }
    }
  }
}

TEST(Quaternion, GoesTheShorterWayAtConstantSpeed) {
  const Quaternion a = quaternion_of({0.0, 0.0, 0.2}, 0);
  Quaternion b = quaternion_of({0.0, 0.0, 1.2}, 0);
  for (double& v : b) v = -v;  // the same rotation, told the other way round
  const Quaternion wanted = quaternion_of({0.0, 0.0, 0.45}, 0);
  EXPECT_NEAR(dot(slerp(a, b, 0.25), wanted), 1.0, 1e-15);
}

TEST(Quaternion, IsExactBetweenRotationsThatHardlyDiffer) {
  for (const double turn : {1e-4, 1e-6, 1e-8, 1e-12}) {
    const Quaternion a = quaternion_of({0.0, 0.0, 0.0}, 0), b = quaternion_of({turn, 0.0, 0.0}, 0);
    EXPECT_NEAR(slerp(a, b, 0.5)[0], std::sin(turn / 4), 1e-14 * turn) << turn;
  }
}

TEST(Quaternion, OfNoLengthHasNoDirection) {
  Quaternion none = {0.0, 0.0, 0.0, 0.0}, tiny = {0.0, 3e-200, 0.0, 4e-200}, odd = {0.0, std::nan(""), 0.0, 1.0};
  EXPECT_FALSE(normalise(none));
  EXPECT_FALSE(normalise(odd));
  ASSERT_TRUE(normalise(tiny));
  EXPECT_DOUBLE_EQ(tiny[1], 0.6);
  EXPECT_DOUBLE_EQ(tiny[3], 0.8);
}

}  // namespace
}  // namespace vantorelix::standalone
