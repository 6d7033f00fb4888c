#include "session/editing/beads.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <memory>
#include <random>
#include <vector>

#include "session/editing/key_edits.h"
#include "standalone/scene/curves/time_handles.h"
#include "standalone/scene/graph/change_log.h"
#include "standalone/scene/test_description.h"

namespace vantorelix::session {
namespace {

using standalone::AnimCurve;
using standalone::ChangeLog;
using standalone::Channel;
using standalone::component;
using standalone::Infinity;
using standalone::Key;
using standalone::KeyTangents;
using standalone::NodeId;
using standalone::Scene;
using standalone::Tangent;

constexpr std::array<Channel, 3> kPosition = {Channel::translateX, Channel::translateY, Channel::translateZ};

// A ball that is moved along an arc by keys of some channels.
class Arc {
 public:
  explicit Arc(std::vector<double> frames = {1.0, 11.0, 27.0, 40.0},
               std::vector<Channel> channels = {kPosition.begin(), kPosition.end()})
      : ball(scene.nodes.create("transform", "ball")) {
    for (std::size_t c = 0; c < channels.size(); ++c)
      for (std::size_t i = 0; i < frames.size(); ++i) set(channels[c], frames[i], kValues[c][i % kValues[c].size()]);
  }

  void set(Channel c, double frame, double value) { scene.curves.set_key(ball, c, frame, value); }
  NodeId id(Channel c) const { return scene.curves.driving_curve(ball, c); }
  const AnimCurve& curve(Channel c) const { return scene.curves.at(id(c)); }
  Vector at(double frame) const { return scene.evaluation.world_matrix(ball, frame).translation(); }
  // Changes the key of a channel at a frame.
  void change(Channel c, double frame, const std::function<void(Key&)>& work) {
    Key key = *curve(c).key_at(frame);
    work(key);
    scene.curves.set_key(id(c), key);
  }
  void change_all(double frame, const std::function<void(Key&)>& work) {
    for (const Channel c : kPosition) change(c, frame, work);
  }
  KeyTangents tangents(Channel c, std::size_t key) const { return standalone::tangents_of(curve(c))[key]; }

  static constexpr std::array<std::array<double, 4>, 3> kValues = {{{0, 9, 20, 26}, {0, 8, 3, 11}, {0, 2, 1, -4}}};

  Scene scene;
  NodeId ball;
};

double distance(const Vector& a, const Vector& b) {
  return std::max({std::abs(a.x - b.x), std::abs(a.y - b.y), std::abs(a.z - b.z)});
}

// A piece of the path after a key of an Arc, as a Bezier of its own: time in parts, and where it leads.
struct Piece {
  Piece(const Arc& arc, std::size_t key) {
    for (std::size_t c = 0; c < 3; ++c) {
      const std::vector<Key>& keys = arc.curve(kPosition[c]).keys();
      const KeyTangents out = arc.tangents(kPosition[c], key), in = arc.tangents(kPosition[c], key + 1);
      const double frames = keys[key + 1].time - keys[key].time;
      values[c] = {keys[key].value, keys[key].value + out.out_y / 3, keys[key + 1].value - in.in_y / 3,
                   keys[key + 1].value};
      times[c] = {0.0, out.out_x / 3 / frames, 1.0 - in.in_x / 3 / frames, 1.0};
      first = keys[key].time;
      last = keys[key + 1].time;
    }
  }
  static double bezier(const std::array<double, 4>& p, double u) {
    const double v = 1.0 - u;
    return v * v * v * p[0] + 3 * u * v * v * p[1] + 3 * u * u * v * p[2] + u * u * u * p[3];
  }
  Vector place(double u) const { return {bezier(values[0], u), bezier(values[1], u), bezier(values[2], u)}; }
  double frame(double u) const { return first + (last - first) * bezier(times[0], u); }

  std::array<std::array<double, 4>, 3> values, times;
  double first, last;
};

// The evaluator has the same places on the way of both, each at its own time.
void expect_same_path(const Arc& before, const Arc& after, std::size_t key, double size) {
  const Piece was(before, key), is(after, key);
  for (double u = 0.0; u <= 1.0; u += 1.0 / 256) {
    EXPECT_LE(distance(was.place(u), is.place(u)), 1e-9 * size) << u;
    EXPECT_LE(distance(before.at(was.frame(u)), after.at(is.frame(u))), 1e-9 * size) << u;
  }
}

Obstacle obstacle(const Arc& arc, double frame) {
  try {
    require_slidable(arc.scene, arc.ball, frame);
  } catch (const CannotPlace& failure) {
    EXPECT_STRNE(failure.what(), "");
    return failure.obstacle;
  }
  ADD_FAILURE() << "nothing stood in the way";
  return Obstacle::depends;
}

TEST(Beads, SlideToWhereThePathIsAtAnotherFrameAndLeaveThePath) {
  const Arc before;
  const double size = 27.0;
  for (const double frame : {12.0, 15.0, 19.0, 26.0})
    for (const double by : {-1.0, -0.25, 0.5, 1.5}) {
      Arc arc;
      const double to = std::clamp(frame + by, 11.5, 26.5);
      slide(arc.scene, arc.ball, frame, to);
      EXPECT_LE(distance(arc.at(frame), before.at(to)), 1e-9 * size) << frame << " to " << to;
      EXPECT_GT(distance(arc.at(frame), before.at(frame)), 1e-3);
      for (std::size_t key = 0; key < 3; ++key) expect_same_path(before, arc, key, size);
    }
}

// Weighted or not, with tangents of any kind but steps, that all channels share.
TEST(Beads, SlideOnPathsOfAnyTangentsOverAndOver) {
  constexpr std::array kSorts = {Tangent::automatic, Tangent::spline, Tangent::linear, Tangent::flat,
                                 Tangent::fixed,     Tangent::fast,   Tangent::slow,   Tangent::clamped};
  std::mt19937 engine(11);
  std::uniform_real_distribution<double> dice(0.0, 1.0);
  const auto value = [&] { return 40.0 * dice(engine) - 20.0; };
  int reached = 0, slides = 0;
  for (int round = 0; round < 200; ++round) {
    Arc arc;
    const bool weighted = dice(engine) < 0.5;
    for (const double frame : {1.0, 11.0, 27.0, 40.0}) {
      const double in_x = dice(engine), out_x = dice(engine);
      for (const Channel c : kPosition) {
        if (weighted) set_weighted(arc.scene, arc.id(c), true);
        arc.change(c, frame, [&](Key& key) {
          key = {frame, value(), Tangent::fixed, Tangent::fixed, in_x, value(), out_x, value()};
          if (!weighted) key.in = key.out = kSorts[engine() % kSorts.size()];
        });
      }
    }
    for (int turn = 0; turn < 3; ++turn, ++slides) {
      Arc was;
      for (const Channel c : kPosition)
        was.scene.curves.assign(was.id(c), arc.curve(c).keys(), arc.curve(c).weighted(), Infinity::constant,
                                Infinity::constant);
      const double frame = 12.0 + std::floor(15.0 * dice(engine));
      const double to = std::clamp(frame + 6.0 * dice(engine) - 3.0, 11.5, 26.5);
      slide(arc.scene, arc.ball, frame, to);
      for (std::size_t key = 0; key < 3; ++key) expect_same_path(was, arc, key, 60.0);
      reached += distance(arc.at(frame), was.at(to)) <= 1e-9 * 60.0 ? 1 : 0;
    }
  }
  EXPECT_GT(reached, slides / 2);
}

TEST(Beads, ChangeNoMoreThanTheTangentsOfTheSegmentAndOfWhatGoesOnBesideIt) {
  Arc arc;
  const Arc before;
  arc.set(Channel::translateX, 60.0, 5.0);
  const double late = arc.at(50.0).x;
  slide(arc.scene, arc.ball, 15.0, 17.0);
  EXPECT_NEAR(arc.at(50.0).x, late, 1e-12);
  for (const Channel c : kPosition) {
    EXPECT_EQ(arc.curve(c).keys()[0].out, before.curve(c).keys()[0].out);
    EXPECT_EQ(arc.curve(c).keys()[3].in, before.curve(c).keys()[3].in);
    EXPECT_EQ(arc.curve(c).keys()[1].out, Tangent::fixed);
    EXPECT_TRUE(arc.curve(c).weighted());
  }
}

TEST(Beads, GoAsFarAsTheirTangentsReach) {
  Arc arc;
  const Arc before;
  slide(arc.scene, arc.ball, 12.0, 26.0);
  const Piece piece(arc, 1);
  EXPECT_NEAR(piece.times[0][1], standalone::kShortestHandle, 1e-12);
  EXPECT_NEAR(piece.times[0][2], 0.0, 1e-12);
  expect_same_path(before, arc, 1, 27.0);
  EXPECT_GT(arc.at(12.0).x, before.at(13.0).x);
}

TEST(Beads, KeepTheSpeedWithoutAJumpAtAKeyThatIsPassed) {
  Arc arc;
  arc.change_all(11.0, [](Key& key) { key.in = key.out = Tangent::spline; });
  const Arc before;
  slide(arc.scene, arc.ball, 15.0, 17.0);
  for (const Channel c : kPosition) {
    const KeyTangents t = arc.tangents(c, 1);
    EXPECT_NEAR(t.in_y / t.in_x, t.out_y / t.out_x, 1e-12 * std::abs(t.in_y / t.in_x));
    EXPECT_LT(t.out_x, 15.0);
    EXPECT_EQ(arc.curve(c).keys()[1].in, Tangent::fixed);
  }
  EXPECT_NE(arc.at(9.0).x, before.at(9.0).x);
}

TEST(Beads, KeepTheSpeedAlsoWhereChannelsLackKeysAroundTheKeyThatIsPassed) {
  Arc before, arc;
  for (Arc* each : {&before, &arc})
    for (const double frame : {19.0, 23.0}) each->set(Channel::translateY, frame, frame);
  slide(arc.scene, arc.ball, 15.0, 16.0);
  EXPECT_NE(arc.curve(Channel::translateX).key_at(19.0), nullptr);
  const auto speed_at = [&](double frame, double by) { return (arc.at(frame + by).x - arc.at(frame).x) / by; };
  EXPECT_NEAR(speed_at(19.0, 1e-6), speed_at(19.0, -1e-6), 1e-4);
  for (const Channel c : kPosition)
    for (const double frame : {19.0, 23.0}) insert_keys(before.scene, {before.id(c)}, frame);
  for (std::size_t key = 0; key < 5; ++key) expect_same_path(before, arc, key, 40.0);
}

TEST(Beads, LeaveTheOtherSideOfABrokenTangentAlone) {
  const auto in_of = [](const Arc& arc) { return arc.curve(Channel::translateY).keys()[1].in; };
  Arc broken, said, stopping;
  broken.change(Channel::translateY, 11.0, [](Key& key) {
    key.in = Tangent::spline;
    key.out = Tangent::linear;
  });
  slide(broken.scene, broken.ball, 15.0, 17.0);
  EXPECT_EQ(in_of(broken), Tangent::spline);
  said.change_all(11.0, [](Key& key) { key.in = key.out = Tangent::spline; });
  slide(said.scene, said.ball, 15.0, 17.0, {.before = true});
  EXPECT_EQ(in_of(said), Tangent::spline);
  stopping.change_all(11.0, [](Key& key) { key.in = key.out = Tangent::flat; });
  slide(stopping.scene, stopping.ball, 15.0, 17.0);
  EXPECT_EQ(in_of(stopping), Tangent::flat);
}

TEST(Beads, LeaveTheOtherSideAloneWhereTheSegmentBeyondIsNoneToSlideOn) {
  Arc arc;
  arc.change_all(11.0, [](Key& key) { key.in = key.out = Tangent::spline; });
  arc.change(Channel::translateX, 1.0, [](Key& key) { key.out = Tangent::step; });
  const double early = arc.at(6.0).y;
  slide(arc.scene, arc.ball, 15.0, 17.0);
  EXPECT_NEAR(arc.at(6.0).y, early, 1e-12);
}

TEST(Beads, SlideOnLinesBesideCurvesThatHaveWeights) {
  Arc arc, before;
  for (Arc* each : {&arc, &before})
    for (const Channel c : kPosition) {
      set_weighted(each->scene, each->id(c), true);
      for (const double frame : {11.0, 27.0})
        each->change(c, frame, [&](Key& key) {
          const Tangent sort = c == Channel::translateZ ? Tangent::linear : Tangent::fixed;
          key = {frame, key.value, sort, sort, 0.25, 4.0, 0.375, 5.0};
        });
    }
  slide(arc.scene, arc.ball, 20.0, 21.0);
  EXPECT_LE(distance(arc.at(20.0), before.at(21.0)), 1e-9 * 27.0);
  EXPECT_NEAR(arc.at(23.5).z, before.at(23.5).z, 1.0);
  const Piece piece(arc, 1);
  EXPECT_DOUBLE_EQ(piece.times[2][1], piece.times[0][1]);
  EXPECT_DOUBLE_EQ(piece.times[2][2], piece.times[0][2]);
}

TEST(Beads, SlideWhateverAChannelThatRestsHasForKeys) {
  Arc arc({1.0, 11.0, 27.0}, {Channel::translateX, Channel::translateY});
  for (const double frame : {1.0, 14.0, 20.0}) arc.set(Channel::translateZ, frame, 5.0);
  arc.set(Channel::translateZ, 30.0, 6.0);
  EXPECT_EQ(require_slidable(arc.scene, arc.ball, 15.0).last, 20.0);  // from then on it moves
  arc.set(Channel::translateZ, 27.0, 5.0);
  EXPECT_EQ(require_slidable(arc.scene, arc.ball, 15.0).first, 11.0);
  EXPECT_EQ(require_slidable(arc.scene, arc.ball, 15.0).last, 27.0);
  slide(arc.scene, arc.ball, 15.0, 17.0);
  EXPECT_EQ(arc.curve(Channel::translateZ).keys().size(), 5U);
}

TEST(Beads, GetKeysWhereAChannelLacksThemBetweenTheNearestOfAll) {
  Arc before, arc;
  for (Arc* each : {&before, &arc}) {
    each->set(Channel::translateY, 20.0, 9.0);
    each->scene.curves.remove_key(each->id(Channel::translateX), 11.0);
  }
  EXPECT_EQ(require_slidable(arc.scene, arc.ball, 15.0).first, 11.0);
  EXPECT_EQ(require_slidable(arc.scene, arc.ball, 15.0).last, 20.0);
  slide(arc.scene, arc.ball, 15.0, 16.0);
  EXPECT_LE(distance(arc.at(15.0), before.at(16.0)), 1e-9 * 27.0);
  for (const Channel c : kPosition) {
    EXPECT_NE(arc.curve(c).key_at(11.0), nullptr);
    EXPECT_NE(arc.curve(c).key_at(20.0), nullptr);
    insert_keys(before.scene, {before.id(c)}, 11.0);
    insert_keys(before.scene, {before.id(c)}, 20.0);
  }
  for (std::size_t key = 0; key < 4; ++key) expect_same_path(before, arc, key, 27.0);
}

TEST(Beads, AreOneStepThatUndoTakesBackToTheLastBit) {
  Arc arc;
  const std::string before = standalone::description(arc.scene);
  ChangeLog log;
  arc.scene.changes.record(&log);
  slide(arc.scene, arc.ball, 15.0, 17.0);
  arc.scene.changes.record(nullptr);
  EXPECT_NE(standalone::description(arc.scene), before);
  arc.scene.changes.undo(log);
  EXPECT_EQ(standalone::description(arc.scene), before);
}

TEST(Beads, ThatStayChangeNothing) {
  Arc arc;
  const std::string before = standalone::description(arc.scene);
  slide(arc.scene, arc.ball, 15.0, 15.0);
  EXPECT_EQ(standalone::description(arc.scene), before);
}

struct Still : standalone::Track {
  std::array<double, 3> at(double) const override { return {1, 2, 3}; }
  const std::vector<double>& key_times() const override { return times; }
  bool moves() const override { return false; }
  std::vector<double> times = {10.0};
};

TEST(Beads, SayWhatKeepsThemFromSliding) {
  EXPECT_EQ(obstacle(Arc(), 11.0), Obstacle::at_key);
  EXPECT_EQ(obstacle(Arc(std::vector<double>{1.0, 11.0}, {}), 5.0), Obstacle::still);

  Arc beyond;
  EXPECT_EQ(obstacle(beyond, 50.0), Obstacle::still);
  beyond.scene.curves.set_infinity(beyond.id(Channel::translateY), Infinity::constant, Infinity::cycle);
  EXPECT_EQ(obstacle(beyond, 50.0), Obstacle::beyond_keys);

  Arc stepping;
  stepping.change(Channel::translateY, 11.0, [](Key& key) { key.out = Tangent::step; });
  EXPECT_EQ(obstacle(stepping, 15.0), Obstacle::steps);

  Arc weighing;
  set_weighted(weighing.scene, weighing.id(Channel::translateX), true);
  set_tangent(weighing.scene, weighing.id(Channel::translateX), 11.0, Side::out, {0.125, 3.0}, false);
  EXPECT_EQ(obstacle(weighing, 15.0), Obstacle::weights_differ);

  Arc shut;
  shut.scene.attributes.lock(shut.ball, "translateY", true);
  EXPECT_EQ(obstacle(shut, 15.0), Obstacle::locked);

  Arc led({1.0, 11.0, 27.0}, {Channel::translateX});
  led.scene.connections.connect(led.scene.nodes.create("expression", "bob"), "output[0]", led.ball, "translateY");
  EXPECT_EQ(obstacle(led, 15.0), Obstacle::not_a_curve);

  Arc recorded({1.0}, {});
  recorded.scene.connections.connect(recorded.scene.curves.create_track(std::make_shared<Still>(), "t"), "output",
                                     recorded.ball, "translate");
  EXPECT_EQ(obstacle(recorded, 15.0), Obstacle::recorded);
}

TEST(Beads, AreRefusedOutsideOfNumbersWithNothingChanged) {
  Arc arc;
  const std::string before = standalone::description(arc.scene);
  EXPECT_THROW(slide(arc.scene, arc.ball, 15.0, NAN), CannotPlace);
  EXPECT_THROW(slide(arc.scene, arc.ball, 11.0, 12.0), CannotPlace);
  EXPECT_EQ(standalone::description(arc.scene), before);
}

}  // namespace
}  // namespace vantorelix::session
