#include "standalone/scene/curves/track.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "standalone/scene/evaluation/evaluator.h"
#include "standalone/scene/scene.h"

namespace vantorelix::standalone {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Component k at frame f is f * (k + 1).
class Ramp : public Track {
 public:
  explicit Ramp(bool moves = true) : moves_(moves) {}
  std::array<double, 3> at(double frame) const override { return {frame, 2.0 * frame, 3.0 * frame}; }
  const std::vector<double>& key_times() const override { return keys_; }
  bool moves() const override { return moves_; }

 private:
  std::vector<double> keys_ = {2.0, 7.0};
  bool moves_;
};

class TrackTest : public testing::Test {
 protected:
  Scene scene_;
  NodeId ball_ = scene_.nodes.create("transform", "ball");
  NodeId track_ = scene_.curves.create_track(std::make_shared<Ramp>(), "ball_track");
};

TEST_F(TrackTest, DrivesTheThreeChannelsOfACompound) {
  scene_.connections.connect(track_, "output", ball_, "translate");
  EXPECT_EQ(scene_.evaluation.world_matrix(ball_, 2.5).translation(), (Vector{2.5, 5.0, 7.5}));
  EXPECT_EQ(scene_.evaluation.channel_at(ball_, Channel::translateY, 3.0), 6.0);
  EXPECT_THAT(scene_.evaluation.not_followed(ball_), IsEmpty());
}

TEST_F(TrackTest, GivesTheSameDoublesToBothWaysOfEvaluation) {
  const NodeId child = scene_.nodes.create("transform", "child", ball_);
  scene_.attributes.set_channel(child, Channel::translateX, 1.0);
  scene_.connections.connect(track_, "output", ball_, "rotate");
  Evaluator evaluator(scene_.evaluation, child);
  for (const double frame : {-3.0, 0.0, 0.1, 2.0, 50.0})
    EXPECT_EQ(evaluator.translation(frame), scene_.evaluation.world_matrix(child, frame).translation());
}

TEST_F(TrackTest, CountsAsKeysAndAnimationOfWhatItDrives) {
  EXPECT_FALSE(scene_.curves.has_keys(ball_));
  EXPECT_FALSE(scene_.evaluation.is_animated(ball_));
  scene_.connections.connect(track_, "output", ball_, "rotate");
  EXPECT_TRUE(scene_.curves.has_keys(ball_));
  EXPECT_TRUE(scene_.evaluation.is_animated(ball_));
  EXPECT_THAT(scene_.curves.key_times(ball_), ElementsAre(2.0, 7.0));
  EXPECT_EQ(scene_.curves.key_count(ball_), 2u);
}

TEST_F(TrackTest, ThatDoesNotMoveAnimatesNothing) {
  scene_.connections.connect(scene_.curves.create_track(std::make_shared<Ramp>(false), "still"), "output", ball_,
                             "translate");
  EXPECT_FALSE(scene_.evaluation.is_animated(ball_));
  EXPECT_TRUE(scene_.curves.has_keys(ball_));
}

TEST_F(TrackTest, GoesWithTheLastThingThatItDrives) {
  scene_.connections.connect(track_, "output", ball_, "translate");
  scene_.nodes.remove(ball_);
  EXPECT_FALSE(scene_.nodes.exists(track_));
}

TEST_F(TrackTest, CannotDriveASingleChannel) {
  scene_.connections.connect(track_, "output", ball_, "translateX");
  EXPECT_EQ(scene_.evaluation.world_matrix(ball_, 4.0).translation(), (Vector{0.0, 0.0, 0.0}));
  EXPECT_EQ(scene_.evaluation.not_followed(ball_).size(), 1u);
}

}  // namespace
}  // namespace vantorelix::standalone
