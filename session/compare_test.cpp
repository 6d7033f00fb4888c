#include "session/compare.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "session/session.h"
#include "tests/support/trail_views.h"

namespace vantorelix::session {
namespace {

using standalone::Channel;
using standalone::NodeId;
using standalone::Scene;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// --- which object is which

TrailReport report_of(const std::vector<std::string>& sources) {
  TrailReport report{"a.ma", 24.0, 0.0, 1.0, "cm", 'y', {}};
  for (const std::string& source : sources) report.trails.emplace_back(support::trail_of({{0, 0, 0}})).source = source;
  return report;
}

Scene scene_of(const std::vector<std::string>& names) {
  Scene scene;
  for (const std::string& name : names) scene.nodes.create("transform", name);
  return scene;
}

// The paths of the counterparts; "" for none.
std::vector<std::string> paths(const TrailReport& report, const Scene& other) {
  std::vector<std::string> result;
  for (const auto& node : counterparts(report, other))
    result.push_back(node ? other.names.long_name(*node) : std::string());
  return result;
}

TEST(Counterparts, HaveTheSamePath) {
  Scene other = scene_of({"ball", "arm"});
  const NodeId group = other.nodes.create("transform", "group");
  other.nodes.create("transform", "wrist", group);
  EXPECT_THAT(paths(report_of({"|arm", "|group|wrist", "|wrist", "|ball"}), other),
              ElementsAre("|arm", "|group|wrist", "", "|ball"));
}

TEST(Counterparts, AreFoundWithoutNamespacesOnEitherSide) {
  Scene other = scene_of({"take2:sub:root", "plain"});
  other.nodes.create("transform", "take2:hand", other.names.require("take2:sub:root"));
  EXPECT_THAT(paths(report_of({"|root", "|root|hand", "|a:plain"}), other),
              ElementsAre("|take2:sub:root", "|take2:sub:root|take2:hand", "|plain"));
}

TEST(Counterparts, AreNoneWhereNamespacesLeaveADoubt) {
  EXPECT_THAT(paths(report_of({"|ball"}), scene_of({"a:ball", "b:ball"})), ElementsAre(""));
  EXPECT_THAT(paths(report_of({"|a:ball", "|b:ball"}), scene_of({"ball"})), ElementsAre("", ""));
}

TEST(Counterparts, WithTheVeryPathAreNotAnothersToo) {
  EXPECT_THAT(paths(report_of({"|a:ball", "|ball"}), scene_of({"ball"})), ElementsAre("", "|ball"));
  EXPECT_THAT(paths(report_of({"|a:ball", "|ball"}), scene_of({"b:ball", "ball"})), ElementsAre("|b:ball", "|ball"));
}

TEST(Counterparts, AreTransforms) {
  Scene other = scene_of({"ball"});
  other.nodes.create("mesh", "shape", other.names.require("ball"));
  EXPECT_THAT(paths(report_of({"|ball|shape"}), other), ElementsAre(""));
}

// --- distances

TrailReport one_trail(std::vector<Vector> points) {
  TrailReport report = support::report_of(std::move(points));
  report.trails[0].source = "|a";
  return report;
}

TEST(Compare, GivesADistanceASampleAndTheFrameOfTheLargest) {
  TrailReport report = one_trail({{0, 0, 0}, {1, 1, 1}, {2, 0, 0}, {3, 0, 0}});
  report.trails[0].start_frame = 10.0;
  report.trails[0].frame_step = 0.5;
  const TrailReport other = one_trail({{0, 0, 0}, {1, 4, 5}, {2, 0, -1}, {3, 3, 4}});
  EXPECT_THAT(compare(report, {"|a"}, other), IsEmpty());
  const Comparison& c = *report.trails[0].compare;
  EXPECT_EQ(c.source, "|a");
  EXPECT_EQ(c.points, other.trails[0].points);
  EXPECT_THAT(c.distances, ElementsAre(0, 5, 1, 5));
  EXPECT_EQ(c.largest, 5.0);
  EXPECT_EQ(c.frame, 10.5);
}

TEST(Compare, LeavesOutWhatIsNotFinite) {
  TrailReport report = one_trail({{kNan, 0, 0}, {0, 0, 0}, {0, 0, 0}});
  compare(report, {"|a"}, one_trail({{0, 0, 0}, {0, 0, 2}, {0, HUGE_VAL, 0}}));
  const Comparison& c = *report.trails[0].compare;
  EXPECT_THAT(c.distances, ElementsAre(testing::IsNan(), 2, testing::IsNan()));
  EXPECT_EQ(c.largest, 2.0);
  EXPECT_EQ(c.frame, 1.0);
  compare(report, {"|a"}, one_trail({{0, 0, 0}}));
  EXPECT_THAT(report.trails[0].compare->largest, testing::IsNan());
}

TEST(Compare, LeavesTrailsWithoutACounterpartAlone) {
  TrailReport report = one_trail({{0, 0, 0}, {1, 0, 0}});
  compare(report, {std::nullopt}, one_trail({{0, 0, 0}, {1, 0, 0}}));
  EXPECT_FALSE(report.trails[0].compare);
}

TEST(Compare, ConvertsTheOthersUnit) {
  for (const auto& [unit, factor] : {std::pair{"m", 100.0}, {"in", 2.54}, {"2.5 cm", 2.5}, {"cm", 1.0}}) {
    TrailReport report = one_trail({{0, 0, 0}, {100, 0, 0}});
    TrailReport other = one_trail({{0, 0, 0}, {100 / factor, 2 / factor, 0}});
    other.unit = unit;
    EXPECT_THAT(compare(report, {"|a"}, other), IsEmpty());
    EXPECT_NEAR(report.trails[0].compare->largest, 2.0, 1e-12) << unit;
  }
}

TEST(Compare, TurnsTheOthersUpAxis) {
  // Up by 3 and ahead by 2, towards who looks from the front, either way.
  const Vector y_up{1, 3, 2}, z_up{1, -2, 3};
  for (const char up : {'y', 'z'}) {
    TrailReport report = one_trail({{0, 0, 0}, up == 'y' ? y_up : z_up});
    TrailReport other = one_trail({{0, 0, 0}, up == 'y' ? z_up : y_up});
    report.up_axis = up;
    other.up_axis = up == 'y' ? 'z' : 'y';
    compare(report, {"|a"}, other);
    EXPECT_EQ(report.trails[0].compare->largest, 0.0) << up;
    EXPECT_EQ(report.trails[0].compare->points->at(1), report.trails[0].points->at(1)) << up;
  }
}

TEST(Compare, SaysThatAUnitIsNotKnownAndThatRatesDiffer) {
  TrailReport report = one_trail({{0, 0, 0}, {1, 0, 0}});
  TrailReport other = report;
  other.unit = kUnknownUnit;
  other.fps = 30.0;
  EXPECT_THAT(compare(report, {"|a"}, other),
              ElementsAre("runs at 30 frames a second and a.ma at 24: frames of the same number are compared",
                          HasSubstr("the unit of this file is not known")));
  EXPECT_EQ(report.trails[0].compare->largest, 0.0);
  EXPECT_THAT(compare(other, {"|a"}, report), ElementsAre(HasSubstr("runs at"), HasSubstr("the unit of a.ma")));
  other = report;
  report.unit = other.unit = kUnknownUnit;
  EXPECT_THAT(compare(report, {"|a"}, other), IsEmpty());
}

TEST(Compare, KnowsTheTrailThatIsFarthestApartAndWhereTheSecondSceneHasThem) {
  TrailReport report = report_of({"|a", "|b", "|c", "|d"}), other = report_of({"|a", "|b", "|c"});
  EXPECT_EQ(farthest_apart(report), std::nullopt);
  for (std::size_t i = 0; i < 3; ++i)
    other.trails[i].points = support::shared({{i == 0 ? kNan : i == 1 ? 1.0 : 3.0, 0, 0}});
  compare(report, {"|a", "|b", "|c", std::nullopt}, other);
  EXPECT_EQ(farthest_apart(report), 2u);
  const TrailReport second = second_of(report);
  EXPECT_EQ(second.trails[2].points, other.trails[2].points);
  EXPECT_THAT(*second.trails[3].points, IsEmpty());
  EXPECT_EQ(second.trails[3].source, "|d");
}

// Two sessions at work at once, over the same frames; the truth is what the scenes evaluate.
TEST(Compare, OfTwoOpenScenesIsTheDistanceOfTheirWorldMatrices) {
  const auto scene = [](double reach) {
    Scene result;
    result.settings.set_playback_range(3.0, 9.0);
    const NodeId group = result.nodes.create("transform", "group");
    const NodeId ball = result.nodes.create("transform", "ball", group);
    result.attributes.set_channel(group, Channel::rotateZ, reach / 10.0);
    for (const double frame : {1.0, 5.0, 12.0})
      result.curves.set_key(ball, Channel::translateX, frame, reach * frame * frame);
    return result;
  };
  const Scene before = scene(1.0), after = scene(1.5);
  Session first(scene(1.0)), second(scene(1.5));
  TrailSettings settings;
  settings.samples_per_frame = 3;
  const auto report_of_ball = [&](Session& session) {
    return read_trails(session.scene(), session.create({session.scene().names.require("ball")}, settings), "s.ma");
  };
  TrailReport report = report_of_ball(first);
  compare(report, {"|group|ball"}, report_of_ball(second));
  const auto& distances = report.trails[0].compare->distances;
  ASSERT_EQ(distances.size(), 19u);
  for (std::size_t i = 0; i < distances.size(); ++i) {
    const double frame = 3.0 + static_cast<double>(i) / 3.0;
    const auto place = [&](const Scene& s) {
      return s.evaluation.world_matrix(s.names.require("ball"), frame).translation();
    };
    const Vector a = place(before), b = place(after);
    EXPECT_NEAR(distances[i], std::sqrt(std::pow(a.x - b.x, 2) + std::pow(a.y - b.y, 2) + std::pow(a.z - b.z, 2)),
                1e-9);
  }
  EXPECT_EQ(report.trails[0].compare->frame, 9.0);
}

}  // namespace
}  // namespace vantorelix::session
