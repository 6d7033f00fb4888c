#include "session/measures/contacts.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/paths.h"

namespace vantorelix::session {
namespace {

using support::path_at;

constexpr double kRate = 30.0;
constexpr double kHeight = 170.0;
// 5.1 above the floor, 51 a second.
constexpr ContactLimits kLimits{kPartsOfFigure.near * kHeight, kPartsOfFigure.fast* kHeight};

// Stands on frames 0 to 30 and 40 to 70 at the height `ankle`, and swings ahead between.
std::vector<Vector> foot(double ankle) {
  std::vector<Vector> points;
  for (int i = 0; i <= 70; ++i) {
    const double swing = i <= 30 ? 0.0 : i >= 40 ? 1.0 : (i - 30) / 10.0;
    points.push_back({80.0 * swing, ankle + 60.0 * swing * (1.0 - swing), 3.0});
  }
  return points;
}

// The points carried along by `speed` a second in z.
std::vector<Vector> carried(std::vector<Vector> points, double speed) {
  for (std::size_t i = 0; i < points.size(); ++i) points[i].z += speed * static_cast<double>(i) / kRate;
  return points;
}

Contacts found(const std::vector<Vector>& points, const Figure& figure = {kHeight, 0.0}, char up_axis = 'y') {
  return contacts_of(path_at(points, kRate, 100.0), up_axis, figure, kLimits);
}

TEST(Contacts, AreTheStretchesNearTheFloor) {
  const Contacts contacts = found(foot(8.0));
  EXPECT_EQ(contacts.floor, 8.0);
  ASSERT_EQ(contacts.spans.size(), 2u);
  EXPECT_EQ(contacts.spans[0].first, 100.0);
  EXPECT_EQ(contacts.spans[0].last, 130.0);  // the next sample is 60 * 0.1 * 0.9 = 5.4 above it
  EXPECT_EQ(contacts.spans[1].first, 140.0);
  EXPECT_EQ(contacts.spans[1].last, 170.0);
  EXPECT_NEAR(contacts.share, 60.0 / 70.0, 1e-15);
}

TEST(Contacts, AFootThatStandsDoesNotSlide) {
  const Contacts contacts = found(foot(8.0));
  EXPECT_EQ(contacts.slide_share, 0.0);
  EXPECT_EQ(contacts.slide_distance, 0.0);
}

// Half the figure's height a second, 85 / 30 a step.
TEST(Contacts, AFootThatIsCarriedAlongSlidesInAllOfThem) {
  const Contacts contacts = found(carried(foot(8.0), 0.5 * kHeight));
  EXPECT_EQ(contacts.slide_share, 1.0);
  EXPECT_NEAR(contacts.slide_distance, 60 * 85.0 / 30.0, 1e-9);
  EXPECT_NEAR(contacts.spans[0].slide_distance, 30 * 85.0 / 30.0, 1e-9);
}

// Of sixty steps in contact, five.
TEST(Contacts, TheSlideShareIsOfTheStepsInContact) {
  auto points = foot(8.0);
  for (std::size_t i = 0; i < points.size(); ++i)
    points[i].x += 2.0 * std::clamp(static_cast<double>(i) - 10.0, 0.0, 5.0);
  EXPECT_NEAR(found(points).slide_share, 5.0 / 60.0, 1e-15);
  EXPECT_NEAR(found(points).slide_distance, 10.0, 1e-12);
}

TEST(Contacts, SlidingBeginsAboveTheLimit) {
  EXPECT_EQ(found(carried(foot(8.0), 50.9)).slide_share, 0.0);
  EXPECT_EQ(found(carried(foot(8.0), 51.1)).slide_share, 1.0);
}

TEST(Contacts, TheUpAxisIsThatOfTheFile) {
  auto points = carried(foot(8.0), 0.5 * kHeight);
  for (Vector& p : points) p = {p.x, -p.z, p.y};
  const Contacts contacts = found(points, {kHeight, 0.0}, 'z');
  EXPECT_EQ(contacts.slide_share, 1.0);
  EXPECT_NEAR(contacts.share, 60.0 / 70.0, 1e-15);
}

TEST(Contacts, AFewSamplesThatSinkBelowTheFloorDoNotMoveIt) {
  auto points = foot(8.0);
  points[5].y = points[6].y = -20.0;
  EXPECT_EQ(found(points).floor, 8.0);
  EXPECT_NEAR(found(points).share, 60.0 / 70.0, 1e-15);
}

TEST(Contacts, ArmsThatNeverComeDownHaveNone) {
  const Contacts contacts = found(foot(60.0));
  for (const double value : {contacts.floor, contacts.share, contacts.slide_share, contacts.slide_distance})
    EXPECT_TRUE(std::isnan(value));
  EXPECT_TRUE(contacts.spans.empty());
  EXPECT_FALSE(std::isnan(found(foot(16.9)).share));
  EXPECT_TRUE(std::isnan(found(foot(17.1)).share));
}

TEST(Contacts, AreNotKnownWithoutAFigureLimitsOrSteps) {
  EXPECT_TRUE(std::isnan(found(foot(8.0), {}).share));
  const auto points = foot(8.0);
  EXPECT_TRUE(std::isnan(contacts_of(path_at(points, kRate), 'y', {kHeight, 0.0}, {kUnknown, kUnknown}).share));
  EXPECT_TRUE(std::isnan(found({{0, 0, 0}}).share));
  EXPECT_TRUE(std::isnan(found({}).share));
}

TEST(Contacts, EndWhereAPositionIsNotFinite) {
  auto points = carried(foot(8.0), 0.5 * kHeight);
  points[10].x = std::numeric_limits<double>::quiet_NaN();
  const Contacts contacts = found(points);
  ASSERT_EQ(contacts.spans.size(), 3u);
  EXPECT_EQ(contacts.spans[0].last, 109.0);
  EXPECT_EQ(contacts.spans[1].first, 111.0);
  EXPECT_NEAR(contacts.share, 58.0 / 68.0, 1e-15);
  EXPECT_EQ(contacts.slide_share, 1.0);
}

}  // namespace
}  // namespace vantorelix::session
