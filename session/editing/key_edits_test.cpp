#include "session/editing/key_edits.h"

#include <gtest/gtest.h>

#include <cmath>

#include "host/error.h"
#include "session/failure.h"
#include "standalone/scene/curves/key_tangents.h"
#include "standalone/scene/test_description.h"

namespace vantorelix::session {
namespace {

using standalone::AnimCurve;
using standalone::Channel;
using standalone::Infinity;
using standalone::Key;
using standalone::KeyTangents;
using standalone::NodeId;
using standalone::Scene;

// A ball whose height has keys at 1, 10, 20 and 30, and whose way has keys at 10 and 12.
class KeyEdits : public testing::Test {
 protected:
  KeyEdits() {
    ball = scene.nodes.create("transform", "ball");
    for (const auto& [frame, value] : {std::pair(1.0, 0.0), {10.0, 4.0}, {20.0, 6.0}, {30.0, 5.0}})
      height = scene.curves.set_key(ball, Channel::translateY, frame, value);
    for (const auto& [frame, value] : {std::pair(10.0, 1.0), {12.0, 2.0}})
      way = scene.curves.set_key(ball, Channel::translateX, frame, value);
  }

  const AnimCurve& curve() const { return scene.curves.at(height); }
  std::vector<double> times(NodeId id) const {
    std::vector<double> found;
    scene.curves.at(id).append_key_times(found);
    return found;
  }
  double slope_in(std::size_t key) const {
    const KeyTangents t = standalone::tangents_of(curve())[key];
    return t.in_y / t.in_x * curve().frames_per_second();
  }
  double slope_out(std::size_t key) const {
    const KeyTangents t = standalone::tangents_of(curve())[key];
    return t.out_y / t.out_x * curve().frames_per_second();
  }

  Scene scene;
  NodeId ball, height, way;
};

TEST_F(KeyEdits, MoveTheKeysOfAllCurvesThatHaveOneAtThatTime) {
  move_keys(scene, {height, way}, 10.0, 11.5);
  EXPECT_EQ(times(height), (std::vector<double>{1.0, 11.5, 20.0, 30.0}));
  EXPECT_EQ(times(way), (std::vector<double>{11.5, 12.0}));
  EXPECT_EQ(curve().evaluate(11.5), 4.0);
  move_keys(scene, {height, way}, 20.0, 25.0);
  EXPECT_EQ(times(way), (std::vector<double>{11.5, 12.0}));
}

TEST_F(KeyEdits, MoveNothingWhereOneKeyWouldLandOnANeighbourOrPassIt) {
  const std::string before = standalone::description(scene);
  for (const double to : {12.0, 13.0, 1.0, -4.0, 25.0, double(NAN)})
    EXPECT_THROW(move_keys(scene, {height, way}, 10.0, to), Failure) << to;
  EXPECT_EQ(standalone::description(scene), before);
  EXPECT_NO_THROW(move_keys(scene, {height}, 10.0, 13.0));
}

TEST_F(KeyEdits, SayWhereThereIsNoKey) {
  EXPECT_THROW(move_keys(scene, {height, way}, 11.0, 11.5), Failure);
  EXPECT_THROW(remove_keys(scene, {height, way}, 11.0), Failure);
  EXPECT_THROW(set_tangent(scene, height, 11.0, Side::in, {1.0, 1.0}, true), Failure);
  EXPECT_THROW(insert_keys(scene, {}, 11.0), Failure);
}

TEST_F(KeyEdits, InsertAKeyIntoEachCurveThatHasNoneThere) {
  const double before = curve().evaluate(11.3);
  insert_keys(scene, {height, way}, 12.0);
  EXPECT_EQ(times(height), (std::vector<double>{1.0, 10.0, 12.0, 20.0, 30.0}));
  EXPECT_EQ(times(way), (std::vector<double>{10.0, 12.0}));
  EXPECT_NEAR(curve().evaluate(11.3), before, 1e-12);
}

TEST_F(KeyEdits, InsertNothingWhereOneCurveHasNoPlaceForIt) {
  scene.curves.set_infinity(way, Infinity::constant, Infinity::cycle);
  const std::string before = standalone::description(scene);
  EXPECT_THROW(insert_keys(scene, {height, way}, 15.0), host::Error);
  EXPECT_EQ(standalone::description(scene), before);
}

TEST_F(KeyEdits, RemoveTheKeysOfAllCurvesAndACurveWithItsLast) {
  remove_keys(scene, {height, way}, 10.0);
  remove_keys(scene, {height, way}, 12.0);
  EXPECT_EQ(times(height), (std::vector<double>{1.0, 20.0, 30.0}));
  EXPECT_FALSE(scene.nodes.exists(way));
}

TEST_F(KeyEdits, TurnTheOtherSideOfAUnifiedTangentAlong) {
  set_tangent(scene, height, 10.0, Side::out, {0.5, 3.0}, true);
  EXPECT_NEAR(slope_out(1), 6.0, 1e-12);
  EXPECT_NEAR(slope_in(1), 6.0, 1e-12);
  set_tangent(scene, height, 10.0, Side::in, {1.0, -2.0}, true);
  EXPECT_NEAR(slope_out(1), -2.0, 1e-12);
}

TEST_F(KeyEdits, LeaveTheOtherSideOfABrokenTangentAlone) {
  const double before = slope_in(1);
  set_tangent(scene, height, 10.0, Side::out, {0.5, 3.0}, false);
  EXPECT_NEAR(slope_out(1), 6.0, 1e-12);
  EXPECT_EQ(slope_in(1), before);
}

TEST_F(KeyEdits, KeepTheLengthOfTheOtherSideOnAWeightedCurve) {
  set_weighted(scene, height, true);
  set_tangent(scene, height, 10.0, Side::in, {0.6, 0.8}, false);
  set_tangent(scene, height, 10.0, Side::out, {3.0, 4.0}, true);
  const Key& key = curve().keys()[1];
  EXPECT_NEAR(key.in_x, 0.6, 1e-12);
  EXPECT_NEAR(key.in_y, 0.8, 1e-12);
  set_tangent(scene, height, 10.0, Side::out, {4.0, 3.0}, true);
  EXPECT_NEAR(curve().keys()[1].in_x, 0.8, 1e-12);
  EXPECT_NEAR(curve().keys()[1].in_y, 0.6, 1e-12);
}

TEST_F(KeyEdits, LeaveAStepAStepWhenTheOtherSideTurns) {
  Key key = curve().keys()[1];
  key.out = standalone::Tangent::step;
  scene.curves.set_key(height, key);
  set_tangent(scene, height, 10.0, Side::in, {1.0, 1.0}, true);
  EXPECT_EQ(curve().evaluate(19.0), 4.0);
}

TEST_F(KeyEdits, RefuseTangentsThatLeadBackOrNowhere) {
  for (const Tangent bad : {Tangent{-1.0, 1.0}, {0.0, 0.0}, {NAN, 1.0}, {1.0, INFINITY}})
    EXPECT_THROW(set_tangent(scene, height, 10.0, Side::in, bad, true), Failure);
}

TEST_F(KeyEdits, KeepTheShapeWhenWeightsBeginToCount) {
  set_tangent(scene, height, 10.0, Side::out, {0.01, 0.05}, true);
  std::vector<double> before;
  for (double frame = 0.0; frame < 32.0; frame += 0.3) before.push_back(curve().evaluate(frame));
  set_weighted(scene, height, true);
  EXPECT_TRUE(curve().weighted());
  for (std::size_t i = 0; i < before.size(); ++i)
    EXPECT_NEAR(curve().evaluate(0.0 + 0.3 * static_cast<double>(i)), before[i], 1e-9);
}

}  // namespace
}  // namespace vantorelix::session
