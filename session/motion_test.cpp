#include "session/motion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "tests/support/trail_views.h"

namespace vantorelix::session {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kFrames = 24;

// Swings around (x, y, 0), `far` to each side.
TrailView swing(const std::string& name, const std::string& parent, double x, double y, double far) {
  std::vector<Vector> points;
  for (int i = 0; i < kFrames; ++i) {
    const double t = i / (kFrames - 1.0);
    points.push_back({x + far * std::sin(6 * t), y, far * std::cos(6 * t)});
  }
  TrailView trail = support::trail_of(std::move(points));
  trail.name = name;
  trail.source = "|" + name;
  if (!parent.empty()) trail.parent = "|" + parent;
  trail.start_frame = 1.0;
  return trail;
}

TrailReport scene_of(std::vector<TrailView> trails) {
  TrailReport report{"a.ma", 24.0, 1.0, kFrames, "cm", 'y', {}};
  report.trails = std::move(trails);
  return report;
}

// A body that walks: two hands of two fingers each, a head, two feet, a still prop and a light far away.
std::vector<TrailView> body() {
  TrailView light = swing("light", "", 0, 0, 0);
  light.points = support::shared(std::vector<Vector>(kFrames, Vector{1e7, 1e7, 0}));
  return {swing("hips", "", 0, 90, 1),           swing("chest", "hips", 0, 140, 2),
          swing("head", "chest", 0, 170, 3),     swing("handL", "chest", 70, 130, 20),
          swing("thumbL", "handL", 76, 130, 21), swing("indexL", "handL", 80, 130, 22),
          swing("handR", "chest", -70, 130, 15), swing("thumbR", "handR", -76, 130, 16),
          swing("footL", "hips", 15, 5, 30),     swing("footR", "hips", -15, 5, 31),
          swing("prop", "", 300, 0, 0),          light};
}

std::vector<std::string> chosen(std::vector<TrailView> trails) {
  const TrailReport report = scene_of(std::move(trails));
  std::vector<std::string> names;
  for (const std::size_t trail : first_choice(report, motion_of(report))) names.push_back(report.trails[trail].name);
  return names;
}

TEST(FirstChoice, IsTheEndsThatTravelMostOfEachLimbOne) {
  EXPECT_THAT(chosen(body()), ElementsAre("head", "indexL", "thumbR", "footL", "footR"));
}

TEST(FirstChoice, IsAtMostFiveAndLeavesOutWhatDoesNotMove) {
  std::vector<TrailView> row;
  for (int i = 0; i < 9; ++i) row.push_back(swing("ball" + std::to_string(i), "", i, 0, i));
  EXPECT_THAT(chosen(std::move(row)), ElementsAre("ball4", "ball5", "ball6", "ball7", "ball8"));
}

TEST(FirstChoice, IsTheFirstObjectWhereNothingMoves) {
  EXPECT_THAT(chosen({swing("a", "", 1, 2, 0), swing("b", "", 3, 2, 0)}), ElementsAre("a"));
  EXPECT_THAT(chosen({}), IsEmpty());
}

TEST(Motion, CountsATrembleAsStillAndASmallMotionBesideALightFarAwayAsMotion) {
  std::vector<TrailView> trails = body();
  trails.push_back(swing("tremble", "", 0, 0, 1e-4));
  const TrailReport report = scene_of(std::move(trails));
  const Motion motion = motion_of(report);
  std::vector<std::string> still;
  for (std::size_t i = 0; i < motion.moves.size(); ++i)
    if (!motion.moves[i]) still.push_back(report.trails[i].name);
  EXPECT_THAT(still, ElementsAre("prop", "light", "tremble"));
}

// Files hold 24 bits of a coordinate, and several make a position.
TEST(Motion, CountsTheRoundingOfCoordinatesAsStillHoweverFewThingsMove) {
  const auto moves = [](double part) -> bool {
    const double far = 7000.0;
    return motion_of(scene_of({swing("a", "", far, 2, 0.5 * part * far)})).moves.front();
  };
  EXPECT_FALSE(moves(1.5e-6));
  EXPECT_TRUE(moves(3e-6));
}

TEST(Motion, TakesAllTrailsWhereNoneMoves) {
  EXPECT_THAT(motion_of(scene_of({swing("a", "", 1, 2, 0), swing("b", "", 3, 2, 0)})).that_move(), ElementsAre(0, 1));
}

TEST(Motion, APlaceIsLinearBetweenSamplesAndHeldBeyondThem) {
  TrailView trail = support::trail_of({{0, 0, 0}, {4, 0, 0}, {4, 8, 0}});
  trail.start_frame = 10.0;
  trail.frame_step = 2.0;
  EXPECT_EQ(place_at(trail, 11.0), (Vector{2, 0, 0}));
  EXPECT_EQ(place_at(trail, 13.5), (Vector{4, 6, 0}));
  EXPECT_EQ(place_at(trail, -5.0), (Vector{0, 0, 0}));
  EXPECT_EQ(place_at(trail, 99.0), (Vector{4, 8, 0}));
}

}  // namespace
}  // namespace vantorelix::session
