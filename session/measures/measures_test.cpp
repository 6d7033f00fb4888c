#include "session/measures/measures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <set>

#include "session/measures/changes.h"
#include "tests/support/paths.h"

namespace vantorelix::session {
namespace {

using support::path_at;

const Ground kGround{'y', {100.0, 0.0}, {3.0, 30.0}};

nlohmann::json json_of(const Measures& measures) {
  StringSink out;
  JsonWriter json(out);
  write_measures(json, measures);
  return nlohmann::json::parse(out.text());
}

TEST(Measures, AreAllKnownOfAMovementOnTheFloor) {
  auto points = support::helix(120, 24.0, 2.0, 0.0);
  points.insert(points.end(), 10, points.back());
  const Measures measures = measures_of(path_at(points, 24.0), kGround);
  for (const MeasureField& field : measure_fields()) EXPECT_TRUE(std::isfinite(measures.*field.value)) << field.name;
  EXPECT_EQ(measures.hold_count, 1.0);
  EXPECT_EQ(measures.hold_frames, 10.0);
  EXPECT_NEAR(measures.mean_curvature, 0.5, 0.05);
  EXPECT_EQ(measures.pops.front().score, measures.top_pop);
}

TEST(Measures, EachHasItsOwnNameAndPlace) {
  std::set<std::string> names;
  std::size_t number = 0;
  Measures measures;
  for (const MeasureField& field : measure_fields()) {
    EXPECT_TRUE(names.insert(field.name).second) << field.name;
    measures.*field.value = static_cast<double>(++number);
  }
  number = 0;
  for (const MeasureField& field : measure_fields())
    EXPECT_EQ(measures.*field.value, static_cast<double>(++number)) << field.name;
}

TEST(Measures, UnitsAreMadeOfThatOfLengths) {
  EXPECT_EQ(unit_of(Dimension::length, "cm"), "cm");
  EXPECT_EQ(unit_of(Dimension::speed, "m"), "m per second");
  EXPECT_EQ(unit_of(Dimension::acceleration, "units"), "units per second squared");
  EXPECT_EQ(unit_of(Dimension::jerk, "cm"), "cm per second cubed");
  EXPECT_EQ(unit_of(Dimension::curvature, "cm"), "1 per cm");
  EXPECT_EQ(unit_of(Dimension::frame, "cm"), "frames");
  EXPECT_EQ(unit_of(Dimension::share, "cm"), "1");
}

TEST(Measures, WhatIsNotKnownIsNullInTheJson) {
  const auto json = json_of(measures_of(path_at({}, 24.0), kGround));
  for (const MeasureField& field : measure_fields())
    EXPECT_EQ(json.at(field.name).is_null(), field.value != &Measures::figure_height) << field.name;
  for (const char* list : {"holds", "pops", "contacts"}) EXPECT_TRUE(json.at(list).empty());
}

TEST(Measures, OfWhatDoesNotMoveAreNoughtOrNotKnown) {
  const auto json = json_of(measures_of(path_at(std::vector<Vector>(50, Vector{1, 2, 3}), 24.0), kGround));
  for (const char* name : {"length", "mean_speed", "top_speed", "top_acceleration", "top_jerk", "slide_share"})
    EXPECT_EQ(json.at(name), 0) << name;
  EXPECT_EQ(json.at("contact_share"), 1);
  for (const char* name :
       {"top_curvature", "spacing_variation", "sparc", "ldlj", "hold_count", "hold_frames", "top_pop"})
    EXPECT_TRUE(json.at(name).is_null()) << name;
}

TEST(Measures, TheJsonHasTheListsWithTheirFields) {
  auto points = support::helix(60, 24.0, 2.0, 0.0);
  points.insert(points.end(), 10, points.back());
  const Measures measures = measures_of(path_at(points, 24.0), kGround);
  const auto json = json_of(measures);
  EXPECT_EQ(json["holds"], nlohmann::json::parse(R"([{"first": 59, "last": 69}])"));
  ASSERT_FALSE(json["pops"].empty());
  EXPECT_EQ(json["pops"][0], (nlohmann::json{{"frame", measures.pops[0].frame},
                                             {"score", measures.pops[0].score},
                                             {"distance", measures.pops[0].distance}}));
  EXPECT_EQ(json["contacts"], nlohmann::json::parse(R"([{"first": 0, "last": 69, "slide_distance": 0}])"));
}

TEST(Changes, AreRankedByHowMuchOfItselfAMeasureChanged) {
  Measures before, after;
  before.length = 100.0, after.length = 150.0;                 // a third of the larger
  before.top_jerk = 10.0, after.top_jerk = 2.0;                // 0.8
  before.slide_share = 0.0, after.slide_share = 0.4;           // of a share its difference
  before.top_speed = after.top_speed = 7.0;                    // none
  before.top_speed_frame = 1.0, after.top_speed_frame = 90.0;  // a place
  before.sparc = -2.0;                                         // no longer known
  const auto changes = changes_of(before, after);
  ASSERT_EQ(changes.size(), 4u);
  EXPECT_STREQ(changes[0].field->name, "sparc");
  EXPECT_EQ(changes[0].change, 1.0);
  EXPECT_STREQ(changes[1].field->name, "top_jerk");
  EXPECT_NEAR(changes[1].change, 0.8, 1e-15);
  EXPECT_STREQ(changes[2].field->name, "slide_share");
  EXPECT_EQ(changes[2].change, 0.4);
  EXPECT_STREQ(changes[3].field->name, "length");
  EXPECT_NEAR(changes[3].change, 1.0 / 3.0, 1e-15);
  EXPECT_EQ(changes[3].before, 100.0);
  EXPECT_EQ(changes[3].after, 150.0);
}

TEST(Changes, OfTheSameMeasuresAreNone) {
  const auto points = support::helix(60, 24.0, 2.0, 1.0);
  const Measures measures = measures_of(path_at(points, 24.0), kGround);
  EXPECT_TRUE(changes_of(measures, measures).empty());
}

}  // namespace
}  // namespace vantorelix::session
