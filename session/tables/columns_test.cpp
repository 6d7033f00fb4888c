#include "session/tables/columns.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "base/vector.h"
#include "session/tables/measuring.h"

namespace vantorelix::session {
namespace {

using testing::ElementsAre;
using testing::IsNan;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TrailView trail(std::vector<Vector> points, std::vector<double> key_times, std::vector<Vector> key_points) {
  TrailView view;
  view.points = std::make_shared<const std::vector<Vector>>(std::move(points));
  view.key_points = std::make_shared<const std::vector<Vector>>(std::move(key_points));
  view.key_times = std::move(key_times);
  return view;
}

TrailReport two_trails() {
  TrailReport report;
  report.fps = 10.0;
  report.unit = "cm";
  report.trails = {trail({{0, 1, 2}, {3, 1, 2}, {3, 1, 6}}, {0, 2}, {{0, 1, 2}, {3, 1, 6}}),
                   trail({{5, 5, 5}, {5, kInfinity, 5}}, {}, {})};
  return report;
}

TEST(Columns, FollowEachOtherTrailByTrail) {
  const Columns columns = columns_of(two_trails());
  EXPECT_THAT(columns.x, ElementsAre(0, 3, 3, 5, 5));
  EXPECT_THAT(columns.z, ElementsAre(2, 2, 6, 5, 5));
  EXPECT_THAT(columns.key_frame, ElementsAre(0, 2));
  EXPECT_THAT(columns.key_z, ElementsAre(2, 6));
  EXPECT_THAT(columns.sample_counts, ElementsAre(3, 2));
  EXPECT_THAT(columns.key_counts, ElementsAre(2, 0));
}

TEST(Columns, HaveTheSpeedOfTheWayToTheNextSampleAndNothingAtATrailsLast) {
  EXPECT_THAT(columns_of(two_trails()).speed, ElementsAre(30, 40, IsNan(), IsNan(), IsNan()));
}

TEST(Columns, HaveNoNumberWhereOneIsNotFinite) {
  EXPECT_THAT(columns_of(two_trails()).y, ElementsAre(1, 1, 1, 5, IsNan()));
}

TEST(Columns, HoldEachMeasureOfAllTrailsInTheOrderOfItsUnits) {
  const TrailReport report = two_trails();
  const auto units = measure_units(report);
  const auto measures = columns_of(report).measures;
  ASSERT_EQ(measures.size(), 2 * units.size());
  EXPECT_EQ(units.front().first, "length");
  EXPECT_THAT(std::vector(measures.begin(), measures.begin() + 2), ElementsAre(7.0, IsNan()));
  EXPECT_EQ(units.back().first, "top_speed_per_frame");
  EXPECT_THAT(std::vector(measures.end() - 2, measures.end()), ElementsAre(4.0, IsNan()));
}

TEST(Columns, AreEmptyWithoutTrails) {
  const Columns columns = columns_of(TrailReport{});
  EXPECT_TRUE(columns.x.empty());
  EXPECT_TRUE(columns.measures.empty());
}

}  // namespace
}  // namespace vantorelix::session
