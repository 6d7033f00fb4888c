#include "session/editing/placing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "standalone/scene/graph/change_log.h"
#include "standalone/scene/test_description.h"

namespace vantorelix::session {
namespace {

using standalone::ChangeLog;
using standalone::Channel;
using standalone::component;
using standalone::kNoNode;
using standalone::kWorld;
using standalone::NodeId;
using standalone::Scene;

constexpr double kFrame = 10.0;

class Dice {
 public:
  explicit Dice(unsigned seed) : engine_(seed) {}
  bool chance(double p) { return between(0.0, 1.0) < p; }
  double between(double a, double b) { return a + (b - a) * (static_cast<double>(engine_() % 100001) / 100000.0); }
  std::size_t below(std::size_t n) { return engine_() % n; }

 private:
  std::mt19937 engine_;
};

double some_value(Dice& dice, Channel c) {
  const bool scale =
      (c >= Channel::scaleX && c <= Channel::scaleZ) || (c >= Channel::inverseScaleX && c < Channel::rotateOrder);
  if (scale) return dice.between(0.5, 2.0);
  if (c == Channel::rotateOrder) return static_cast<double>(dice.below(6));
  if (c >= Channel::inheritsTransform) return dice.chance(0.8) ? 1.0 : 0.0;
  return dice.between(-3.0, 3.0);
}

// A chain of transforms and joints with anything in their channels, keys included, and an object at its end that has
// keys of its translation at kFrame.
class Chain {
 public:
  explicit Chain(unsigned seed) : dice(seed) {
    for (int depth = 0; depth < 4; ++depth) {
      object = scene.nodes.create(dice.chance(0.5) ? "joint" : "transform", "n", object);
      for (std::size_t c = 0; c < static_cast<std::size_t>(Channel::count); ++c)
        if (dice.chance(0.4)) fill(static_cast<Channel>(c));
      if (dice.chance(0.4)) set_offset();
    }
    for (std::size_t k = 0; k < 3; ++k)
      for (const double frame : {1.0, kFrame, 20.0})
        scene.curves.set_key(object, component(Channel::translateX, k), frame, dice.between(-5.0, 5.0));
  }

  Vector at(double frame) const { return scene.evaluation.world_matrix(object, frame).translation(); }
  Vector somewhere() { return {dice.between(-50.0, 50.0), dice.between(-50.0, 50.0), dice.between(-50.0, 50.0)}; }

  Dice dice;
  Scene scene;
  NodeId object = kWorld;

 private:
  void fill(Channel c) {
    if (c < Channel::shearXY && dice.chance(0.5))
      for (const double frame : {3.0, 17.0}) scene.curves.set_key(object, c, frame, some_value(dice, c));
    else
      scene.attributes.set_channel(object, c, some_value(dice, c));
  }
  void set_offset() {
    std::array<double, 16> m = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    for (std::size_t i = 0; i < 4; ++i)
      for (std::size_t j = 0; j < 3; ++j) m[4 * i + j] += dice.between(-0.4, 0.4);
    scene.attributes.set_offset_parent_matrix(object, m);
  }
};

double distance(const Vector& a, const Vector& b) {
  return std::max({std::abs(a.x - b.x), std::abs(a.y - b.y), std::abs(a.z - b.z)});
}

std::vector<double> key_times(const Scene& scene, NodeId object, Channel c) {
  std::vector<double> times;
  scene.curves.at(scene.curves.driving_curve(object, c)).append_key_times(times);
  return times;
}

// An object with keys at 1, 10 and 20 of these channels, valued 1.
NodeId keyed(Scene& scene, std::initializer_list<Channel> channels, NodeId parent = kWorld) {
  const NodeId object = scene.nodes.create("transform", "ball", parent);
  for (const Channel c : channels)
    for (const double frame : {1.0, kFrame, 20.0}) scene.curves.set_key(object, c, frame, 1.0);
  return object;
}

Obstacle obstacle(const std::function<void()>& work) {
  try {
    work();
  } catch (const CannotPlace& failure) {
    EXPECT_STRNE(failure.what(), "");
    return failure.obstacle;
  }
  ADD_FAILURE() << "nothing stood in the way";
  return Obstacle::not_finite;
}

TEST(Placing, PutsAnObjectAnywhereThroughAllThatATransformIsMadeOf) {
  int moved = 0;
  for (unsigned seed = 0; seed < 300; ++seed) {
    Chain chain(seed);
    const std::string before = standalone::description(chain.scene);
    const Vector wanted = chain.somewhere();
    ChangeLog log;
    chain.scene.changes.record(&log);
    place(chain.scene, chain.object, kFrame, wanted);
    chain.scene.changes.record(nullptr);
    const Vector above = chain.scene.evaluation.matrix_above(chain.object, kFrame).translation();
    const double size = std::max({50.0, std::abs(above.x), std::abs(above.y), std::abs(above.z)});
    EXPECT_LE(distance(chain.at(kFrame), wanted), 1e-9 * size) << seed;
    moved += standalone::description(chain.scene) != before ? 1 : 0;
    chain.scene.changes.undo(log);
    EXPECT_EQ(standalone::description(chain.scene), before) << seed;
  }
  EXPECT_EQ(moved, 300);
}

TEST(Placing, IsFoundWhereverTheWorldMatrixIsTheLocalOneTimesWhatIsAbove) {
  for (unsigned seed = 0; seed < 100; ++seed) {
    const Chain chain(seed);
    const Affine whole = chain.scene.evaluation.world_matrix(chain.object, kFrame);
    const Affine product = chain.scene.evaluation.local_matrix(chain.object, kFrame) *
                           chain.scene.evaluation.matrix_above(chain.object, kFrame);
    for (std::size_t i = 0; i < 4; ++i)
      for (std::size_t j = 0; j < 3; ++j)
        EXPECT_NEAR(product.m[i][j], whole.m[i][j], 1e-11 * (1.0 + std::abs(whole.m[i][j]))) << seed;
  }
}

TEST(Placing, LeavesTheCurveBeyondTheNeighbouringKeysAndItsOtherKeysAlone) {
  Scene scene;
  const NodeId ball = keyed(scene, {Channel::translateX, Channel::translateY, Channel::translateZ});
  place(scene, ball, kFrame, {7.0, 1.0, 1.0});
  EXPECT_EQ(key_times(scene, ball, Channel::translateX), (std::vector<double>{1.0, kFrame, 20.0}));
  for (const double frame : {1.0, 20.0, 25.0})
    EXPECT_EQ(scene.evaluation.channel_at(ball, Channel::translateX, frame), 1.0);
}

TEST(Placing, InsertsAKeyOnAChannelThatHasNoneThereAndHasToChange) {
  Scene scene;
  const NodeId ball = keyed(scene, {Channel::translateX});
  for (const double frame : {-10.0, 5.0, 15.0, 40.0})
    scene.curves.set_key(ball, Channel::translateY, frame, frame * frame / 10.0);
  const auto height = [&](double frame) { return scene.evaluation.channel_at(ball, Channel::translateY, frame); };
  const double early = height(0.0), late = height(30.0);
  place(scene, ball, kFrame, {1.0, 99.0, 0.0});
  EXPECT_EQ(key_times(scene, ball, Channel::translateY), (std::vector<double>{-10.0, 5.0, kFrame, 15.0, 40.0}));
  EXPECT_EQ(height(kFrame), 99.0);
  EXPECT_NEAR(height(0.0), early, 1e-12);
  EXPECT_NEAR(height(30.0), late, 1e-12);
  EXPECT_EQ(scene.curves.driving_curve(ball, Channel::translateZ), kNoNode);
}

TEST(Placing, StartsACurveWithTheOldValueAtTheKeysAround) {
  Scene scene;
  const NodeId ball = keyed(scene, {Channel::translateX});
  scene.attributes.set_channel(ball, Channel::translateZ, 4.0);
  place(scene, ball, kFrame, {1.0, 0.0, 9.0});
  EXPECT_EQ(key_times(scene, ball, Channel::translateZ), (std::vector<double>{1.0, kFrame, 20.0}));
  for (const double frame : {-5.0, 1.0, 20.0, 50.0})
    EXPECT_EQ(scene.evaluation.channel_at(ball, Channel::translateZ, frame), 4.0);
}

TEST(Placing, WithoutAKeyAtThatTimeSaysWhichChannelsHaveOne) {
  Scene scene;
  const NodeId ball = keyed(scene, {Channel::translateX}), turning = keyed(scene, {Channel::rotateX});
  EXPECT_EQ(obstacle([&] { place(scene, ball, 11.0, {}); }), Obstacle::no_key);
  EXPECT_EQ(obstacle([&] { place(scene, turning, 10.0, {}); }), Obstacle::rotations_only);
  EXPECT_EQ(obstacle([&] { place(scene, turning, 11.0, {}); }), Obstacle::no_key);
  EXPECT_EQ(obstacle([&] { require_placeable(scene, ball, 11.0); }), Obstacle::no_key);
}

TEST(Placing, IsRefusedByALockedChannelOnlyWhereItWouldHaveToChange) {
  Scene scene;
  const NodeId ball = keyed(scene, {Channel::translateX, Channel::translateY});
  scene.attributes.lock(ball, "translateY", true);
  EXPECT_NO_THROW(place(scene, ball, kFrame, {5.0, 1.0, 0.0}));
  const std::string before = standalone::description(scene);
  EXPECT_EQ(obstacle([&] { place(scene, ball, kFrame, {6.0, 2.0, 0.0}); }), Obstacle::locked);
  EXPECT_EQ(standalone::description(scene), before);
  scene.attributes.lock(ball, "translateY", false);
  scene.attributes.lock(ball, "translate", true);
  EXPECT_EQ(obstacle([&] { place(scene, ball, kFrame, {6.0, 1.0, 0.0}); }), Obstacle::locked);
}

TEST(Placing, IsRefusedWhereSomethingElseDrivesAChannelThatHasToChange) {
  Scene scene;
  const NodeId ball = keyed(scene, {Channel::translateX});
  scene.connections.connect(scene.nodes.create("expression", "bob"), "output[0]", ball, "translateY");
  EXPECT_NO_THROW(place(scene, ball, kFrame, {5.0, 0.0, 0.0}));
  EXPECT_EQ(obstacle([&] { place(scene, ball, kFrame, {5.0, 3.0, 0.0}); }), Obstacle::not_a_curve);
}

struct Still : standalone::Track {
  std::array<double, 3> at(double) const override { return {1, 2, 3}; }
  const std::vector<double>& key_times() const override { return times; }
  bool moves() const override { return false; }
  std::vector<double> times = {kFrame};
};

TEST(Placing, IsRefusedForATranslationThatIsRecordedAsAWhole) {
  Scene scene;
  const NodeId ball = scene.nodes.create("transform", "ball");
  scene.connections.connect(scene.curves.create_track(std::make_shared<Still>(), "t"), "output", ball, "translate");
  EXPECT_EQ(obstacle([&] { place(scene, ball, kFrame, {}); }), Obstacle::recorded);
}

TEST(Placing, IsRefusedUnderAParentThatIsFlat) {
  Scene scene;
  const NodeId group = scene.nodes.create("transform", "group");
  const NodeId ball = keyed(scene, {Channel::translateX}, group);
  scene.attributes.set_channel(group, Channel::scaleZ, 0.0);
  EXPECT_EQ(obstacle([&] { require_placeable(scene, ball, kFrame); }), Obstacle::flat_parent);
  scene.attributes.set_channel(ball, Channel::inheritsTransform, 0.0);
  EXPECT_NO_THROW(place(scene, ball, kFrame, {1.0, 2.0, 3.0}));
}

TEST(Placing, IsRefusedOutsideOfNumbers) {
  Scene scene;
  const NodeId ball = keyed(scene, {Channel::translateX});
  EXPECT_EQ(obstacle([&] { place(scene, ball, kFrame, {NAN, 0.0, 0.0}); }), Obstacle::not_finite);
}

TEST(Placing, IsRefusedBeyondTheEndsOfACurveThatRepeats) {
  Scene scene;
  const NodeId ball = keyed(scene, {Channel::translateX});
  for (const double frame : {0.0, 4.0}) scene.curves.set_key(ball, Channel::translateY, frame, frame);
  scene.curves.set_infinity(scene.curves.driving_curve(ball, Channel::translateY), standalone::Infinity::cycle,
                            standalone::Infinity::cycle);
  EXPECT_EQ(obstacle([&] { place(scene, ball, kFrame, {1.0, 77.0, 0.0}); }), Obstacle::repeats);
}

TEST(Placing, IsTakenBackWhereTheParentHangsOnTheObject) {
  Scene scene;
  const NodeId group = scene.nodes.create("transform", "group");
  const NodeId ball = keyed(scene, {Channel::translateX}, group);
  scene.attributes.set_channel(ball, Channel::inheritsTransform, 1.0);
  scene.connections.connect(ball, "translateX", group, "scaleX");
  const std::string before = standalone::description(scene);
  EXPECT_EQ(obstacle([&] { place(scene, ball, kFrame, {-4.0, 0.0, 0.0}); }), Obstacle::depends);
  EXPECT_EQ(standalone::description(scene), before);
}

}  // namespace
}  // namespace vantorelix::session
