#include "session/figure.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>

#include "session/report.h"
#include "session/session.h"
#include "standalone/formats/reader.h"

namespace vantorelix::session {
namespace {

namespace fs = std::filesystem;
using standalone::Channel;
using standalone::NodeId;
using standalone::Scene;

// A group that stands, below it hips that walk at 90, a head 80 above them and a foot 85 below.
struct Walker {
  Scene scene;
  NodeId group, hips, head, foot;

  Walker() {
    group = scene.nodes.create("transform", "group");
    hips = scene.nodes.create("joint", "hips", group);
    head = scene.nodes.create("joint", "head", hips);
    foot = scene.nodes.create("joint", "foot", hips);
    scene.settings.set_playback_range(0.0, 8.0);
    scene.attributes.set_channel(hips, Channel::translateY, 90.0);
    scene.attributes.set_channel(head, Channel::translateY, 80.0);
    scene.attributes.set_channel(foot, Channel::translateY, -85.0);
    for (const double frame : {0.0, 8.0}) scene.curves.set_key(hips, Channel::translateX, frame, 100.0 * frame);
  }
  Figure figure_of(NodeId object) const { return figures_of(scene, {object}).at(0); }
};

TEST(Figures, AreAllThatHangsOnTheTopmostAncestorThatMoves) {
  const Walker walker;
  for (const NodeId part : {walker.hips, walker.head, walker.foot}) {
    EXPECT_NEAR(walker.figure_of(part).height, 165.0, 1e-9);
    EXPECT_NEAR(walker.figure_of(part).floor, 5.0, 1e-9);
  }
}

TEST(Figures, AreAsLargeAsTheyEverAre) {
  Walker walker;
  walker.scene.curves.set_key(walker.head, Channel::translateY, 0.0, 80.0);
  walker.scene.curves.set_key(walker.head, Channel::translateY, 8.0, 115.0);
  walker.scene.curves.set_key(walker.foot, Channel::translateY, 0.0, -95.0);
  walker.scene.curves.set_key(walker.foot, Channel::translateY, 8.0, -85.0);
  EXPECT_NEAR(walker.figure_of(walker.hips).height, 200.0, 1e-9);
  EXPECT_NEAR(walker.figure_of(walker.hips).floor, -5.0, 1e-9);
}

TEST(Figures, NeedNotStand) {
  Walker walker;
  walker.scene.attributes.set_channel(walker.hips, Channel::rotateZ, 1.5707963267948966);
  EXPECT_NEAR(walker.figure_of(walker.foot).height, 165.0, 1e-9);
}

TEST(Figures, HaveTheirFloorAlongTheUpAxis) {
  Walker walker;
  walker.scene.settings.set_up_axis('z');
  EXPECT_EQ(walker.figure_of(walker.hips).floor, 0.0);
}

TEST(Figures, OneObjectAloneIsNone) {
  Walker walker;
  const NodeId ball = walker.scene.nodes.create("transform", "ball");
  walker.scene.curves.set_key(ball, Channel::translateX, 0.0, 1.0);
  EXPECT_TRUE(std::isnan(walker.figure_of(ball).height));
  walker.scene.nodes.create("transform", "beside", ball);
  EXPECT_TRUE(std::isnan(walker.figure_of(ball).height));
}

fs::path data_folder() {
  const char* const named = std::getenv("VANTORELIX_DATA");
  return named != nullptr ? fs::path(named) : fs::path(VANTORELIX_SOURCE_DIR) / ".." / "shared" / "data";
}

// The measures of the feet of a captured clip, whose figure is carried along by `heights` of itself a second.
std::vector<Measures> feet_of_clip(double heights) {
  Scene scene = standalone::read_scene(data_folder() / "bvh" / "cmu_01_01.bvh");
  std::vector<NodeId> feet;
  for (const char* name : {"LeftFoot", "RightFoot"}) feet.push_back(scene.names.require(name));
  Session session(std::move(scene));
  TrailReport report = read_trails(session.scene(), session.create(feet, {}), "a.bvh", Figures::with);
  std::vector<Measures> result;
  for (TrailView& trail : report.trails) {
    auto points = *trail.points;
    for (std::size_t i = 0; i < points.size(); ++i)
      points[i].x += heights * trail.figure.height * static_cast<double>(i) * trail.frame_step / report.fps;
    trail.points = std::make_shared<const std::vector<Vector>>(std::move(points));
    result.push_back(measures_of(trail, report));
  }
  return result;
}

// What is expected of captured motion: feet slide a little where they touch down and lift off.
TEST(Feet, OfACapturedClipSlideALittle) {
  if (!fs::exists(data_folder())) GTEST_SKIP() << "no reference scenes at " << data_folder() << "; set VANTORELIX_DATA";
  for (const Measures& foot : feet_of_clip(0.0)) {
    EXPECT_GE(foot.slide_share, 0.05);
    EXPECT_LE(foot.slide_share, 0.08);
    EXPECT_GT(foot.contact_share, 0.5);
  }
}

TEST(Feet, OfACapturedClipThatIsCarriedAlongSlideNearlyAlways) {
  if (!fs::exists(data_folder())) GTEST_SKIP() << "no reference scenes at " << data_folder() << "; set VANTORELIX_DATA";
  for (const Measures& foot : feet_of_clip(0.5)) EXPECT_GT(foot.slide_share, 0.9);
}

}  // namespace
}  // namespace vantorelix::session
