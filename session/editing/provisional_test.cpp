#include "session/editing/provisional.h"

#include <gtest/gtest.h>

#include <limits>

#include "session/editing/placing.h"

namespace vantorelix::session {
namespace {

using standalone::Channel;
using standalone::FrameRange;
using standalone::Host;
using standalone::kWorld;
using standalone::NodeId;
using standalone::Scene;

constexpr double kFar = std::numeric_limits<double>::infinity();

// A root with two arms of two joints each, a follower of the first arm by its offset parent matrix, and a stranger.
class Provisional : public testing::Test {
 protected:
  static constexpr std::size_t kLeft = 1;

  Provisional() : session_(make()) { trails_ = session_.create(objects_, {}); }

  Scene make() {
    Scene scene;
    scene.settings.set_playback_range(1.0, 100.0);
    const auto add = [&](const char* name, NodeId parent) {
      const NodeId node = scene.nodes.create("joint", name, parent);
      for (const double frame : {1.0, 30.0, 50.0, 70.0, 90.0, 100.0}) {
        scene.curves.set_key(node, Channel::translateX, frame, frame / 10.0);
        scene.curves.set_key(node, Channel::rotateZ, frame, frame / 40.0);
      }
      objects_.push_back(node);
      return node;
    };
    const NodeId root = add("root", kWorld);
    const NodeId left = add("left", root);
    add("leftHand", left);
    add("right", root);
    const NodeId follower = add("follower", kWorld);
    scene.connections.connect(left, "worldMatrix[0]", follower, "offsetParentMatrix");
    add("stranger", kWorld);
    return scene;
  }

  TrailReport report() const { return read_trails(session_.scene(), trails_, "a"); }
  std::vector<Stretch> ask(const FrameRange& range) const {
    return provisional(session_.scene(), trails_, report(), objects_[kLeft], range);
  }
  void drag() {
    session_.edit([&](Host& host) { place(host.scene(), objects_[kLeft], 50.0, {20.0, 7.0, -3.0}); });
  }

  std::vector<NodeId> objects_;
  Session session_;
  std::vector<Trail> trails_;
};

TEST_F(Provisional, TrailsAreThoseOfWhatHangsOnTheObject) {
  std::vector<std::size_t> found;
  for (const Stretch& stretch : ask({-kFar, kFar})) found.push_back(stretch.trail);
  EXPECT_EQ(found, (std::vector<std::size_t>{1, 2, 4}));
}

TEST_F(Provisional, TrailsHaveTheBitsOfTheRebuiltOnesAfterwards) {
  const TrailReport before = report();
  drag();
  const std::vector<Stretch> early = ask({-kFar, kFar});
  session_.settle();
  const TrailReport after = report();
  ASSERT_EQ(early.size(), 3u);
  for (const Stretch& stretch : early) {
    EXPECT_EQ(stretch.first, 0u);
    EXPECT_EQ(stretch.points, *after.trails[stretch.trail].points);
    EXPECT_NE(stretch.points, *before.trails[stretch.trail].points);
  }
}

TEST_F(Provisional, SamplesOutsideOfWhatAnEditIsFeltInAreAsTheyWere) {
  const TrailReport before = report();
  const auto curves = session_.scene().curves.driving_curves(objects_[kLeft]);
  const FrameRange range = felt_around(session_.scene(), curves, 50.0);
  EXPECT_EQ(range.first, 1.0);
  EXPECT_EQ(range.last, 90.0);
  drag();
  for (const Stretch& stretch : ask({-kFar, kFar})) {
    const std::vector<Vector>& points = *before.trails[stretch.trail].points;
    const TrailView& trail = before.trails[stretch.trail];
    for (std::size_t i = 0; i < points.size(); ++i) {
      const bool later = trail.start_frame + static_cast<double>(i) * trail.frame_step > range.last;
      EXPECT_TRUE(!later || stretch.points[i] == points[i]);
    }
  }
}

TEST_F(Provisional, SamplesAreThoseOfTheRangeAlone) {
  const std::vector<Stretch> all = ask({-kFar, kFar}), some = ask({40.0, 60.0});
  ASSERT_EQ(some.size(), all.size());
  for (std::size_t k = 0; k < some.size(); ++k) {
    ASSERT_EQ(some[k].points.size(), 21u);
    EXPECT_EQ(some[k].first, 39u);
    for (std::size_t i = 0; i < 21; ++i) EXPECT_EQ(some[k].points[i], all[k].points[39 + i]);
  }
  EXPECT_TRUE(ask({200.0, 300.0}).empty());
}

TEST_F(Provisional, EveryFrameMayFeelAnEditOfAnObjectWithoutCurves) {
  EXPECT_EQ(felt_around(session_.scene(), {}, 5.0).first, -kFar);
  EXPECT_EQ(felt_around(session_.scene(), {}, 5.0).last, kFar);
}

}  // namespace
}  // namespace vantorelix::session
