// What a hint does to evaluation: it changes when things are worked out and how often, and never what comes out.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <memory>
#include <numeric>
#include <vector>

#include "standalone/scene/evaluation/evaluator.h"
#include "standalone/scene/scene.h"

namespace vantorelix::standalone {
namespace {

// Counts how often it is evaluated.
class CountingTrack : public Track {
 public:
  std::array<double, 3> at(double frame) const override {
    ++evaluations;
    return {std::sin(frame), frame, 0.25 * frame};
  }
  const std::vector<double>& key_times() const override { return times_; }
  bool moves() const override { return true; }

  mutable int evaluations = 0;

 private:
  std::vector<double> times_ = {0.0, 1000.0};
};

// A chain in which each node is driven by a track in translation, and turned by a curve.
class Hints : public testing::Test {
 protected:
  NodeId add(NodeId parent) {
    const NodeId node = scene.nodes.create("joint", "n", parent);
    tracks.push_back(std::make_shared<CountingTrack>());
    scene.connections.connect(scene.curves.create_track(tracks.back(), "t"), "output", node, "translate");
    scene.curves.set_key(node, Channel::rotateZ, 0, 0.1);
    scene.curves.set_key(node, Channel::rotateZ, 700, 3);
    return node;
  }
  // Of nodes at times: each of the three channels asks the track.
  int evaluations() const {
    const auto add = [](int n, const auto& track) { return n + track->evaluations; };
    return std::accumulate(tracks.begin(), tracks.end(), 0, add) / 3;
  }
  void forget() {
    for (const auto& track : tracks) track->evaluations = 0;
  }
  bool is_right(Evaluator& evaluator, NodeId node, double frame) const {
    const Vector fast = evaluator.translation(frame), plain = scene.evaluation.world_matrix(node, frame).translation();
    const auto same = [](double a, double b) {
      return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
    };
    return same(fast.x, plain.x) && same(fast.y, plain.y) && same(fast.z, plain.z);
  }
  static std::vector<double> frames(double first, std::size_t count, double step = 1.0) {
    std::vector<double> all;
    for (std::size_t i = 0; i < count; ++i) all.push_back(first + step * static_cast<double>(i));
    return all;
  }
  void ask(NodeId node, const std::vector<double>& at) {
    Evaluator e(scene.evaluation, node);
    e.expect(at);
    for (const double frame : at) e.translation(frame);
  }

  Scene scene;
  std::vector<std::shared_ptr<CountingTrack>> tracks;
};

TEST_F(Hints, AloneEvaluateNothing) {
  const NodeId node = add(add(kWorld));
  Evaluator e(scene.evaluation, node);
  e.translation(3.0);
  forget();
  e.expect(frames(1, 60));
  e.expect({});
  e.expect(frames(1, 1000));
  EXPECT_EQ(evaluations(), 0);
}

TEST_F(Hints, OfTwoTimesCostNoMoreThanTwoQuestions) {
  const NodeId node = add(add(add(kWorld)));
  Evaluator e(scene.evaluation, node);
  for (const double frame : {1.0, 500.0}) e.translation(frame);
  const int without = evaluations();
  EXPECT_EQ(without, 6) << "three nodes at two times";
  forget();
  e.expect(std::vector{2.0, 501.0});
  for (const double frame : {2.0, 501.0}) e.translation(frame);
  EXPECT_EQ(evaluations(), without);
}

TEST_F(Hints, AreWorkedOutWhenTheFirstIsAskedForAndOnce) {
  const NodeId node = add(add(kWorld));
  Evaluator e(scene.evaluation, node);
  e.expect(frames(1, 50));
  e.translation(1.0);
  EXPECT_EQ(evaluations(), 100);
  for (const double frame : frames(2, 49)) EXPECT_TRUE(is_right(e, node, frame));
  forget();
  e.translation(1.0);
  EXPECT_EQ(evaluations(), 2) << "what nobody announced is worked out alone";
}

TEST_F(Hints, ThatAreWrongChangeNoResult) {
  const NodeId parent = add(add(kWorld)), node = add(parent);
  Evaluator a(scene.evaluation, node), b(scene.evaluation, parent);
  const std::vector<double> asked = {1.0, 2.0, 0.0, 2.0, 1e300, std::nan(""), 3.0};
  const std::vector<std::vector<double>> hints = {{},   {9.0, 8.0}, {2.0, 1.0}, {1.0, -0.0, 2.0, 0.0}, frames(1, 300),
                                                  asked};
  for (const auto& hint : hints) {
    a.expect(hint);
    for (const double frame : asked) {
      EXPECT_TRUE(is_right(a, node, frame) || std::isnan(frame)) << frame;
      EXPECT_TRUE(is_right(b, parent, frame) || std::isnan(frame)) << frame << ", of another node in between";
    }
  }
}

TEST_F(Hints, LetNodesShareWhatTheyHangOnInWhateverOrderTheyAreAsked) {
  const NodeId parent = add(add(kWorld)), first = add(parent), second = add(parent);
  const std::vector<double> at = frames(1, 200);
  for (std::size_t i = 0; i < at.size(); i += 50) ask(first, {at.begin() + i, at.begin() + i + 50});
  EXPECT_EQ(evaluations(), 3 * 200);
  forget();
  const std::vector<double> scattered = frames(200, 60, -3.0);
  ask(second, scattered);
  EXPECT_EQ(evaluations(), 60) << "only its own";
  Evaluator e(scene.evaluation, second);
  e.expect(scattered);
  for (const double frame : scattered) EXPECT_TRUE(is_right(e, second, frame));
}

TEST_F(Hints, KeepNothingAcrossAnEdit) {
  const NodeId parent = add(kWorld), node = add(parent);
  ask(parent, frames(1, 64));  // so that its matrices are remembered
  Evaluator e(scene.evaluation, node);
  e.expect(frames(1, 64));
  EXPECT_TRUE(is_right(e, node, 1.0));
  scene.attributes.set_channel(parent, Channel::scaleX, 2.0);
  EXPECT_TRUE(is_right(e, node, 2.0));
  scene.curves.set_key(node, Channel::rotateX, 5, 1.0);
  e.expect(frames(1, 64));
  for (const double frame : frames(1, 64)) EXPECT_TRUE(is_right(e, node, frame));
}

TEST_F(Hints, AskFewTimesAtOnceOfANodeFarDown) {
  NodeId node = kWorld;
  for (int i = 0; i < 3000; ++i) node = add(node);
  Evaluator e(scene.evaluation, node);
  e.expect(frames(1, 64));
  e.translation(1.0);
  EXPECT_GE(evaluations(), 3000);
  EXPECT_LE(evaluations(), 5 * 3000 + 3000) << "a question takes as long as its slice may";
  EXPECT_TRUE(is_right(e, node, 2.0));
}

TEST_F(Hints, StayRightWhenMoreIsAskedThanCanBeRemembered) {
  std::vector<NodeId> nodes = {add(kWorld)};
  for (int i = 0; i < 70; ++i) nodes.push_back(add(nodes[static_cast<std::size_t>(i) / 2]));
  for (const NodeId node : nodes) {
    Evaluator e(scene.evaluation, node);
    for (double first = 1; first < 5000; first += 64) {
      e.expect(frames(first, 64));
      e.translation(first);
      ASSERT_TRUE(is_right(e, node, first + 1));
    }
  }
}

}  // namespace
}  // namespace vantorelix::standalone
