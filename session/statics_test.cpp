#include "session/statics.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "standalone/formats/reader.h"

namespace vantorelix::session {
namespace {

using standalone::Channel;
using standalone::NodeId;
using standalone::Scene;

NodeId add(Scene& scene, const std::string& name, const std::string& type = "mesh",
           NodeId parent = standalone::kWorld) {
  const NodeId node = scene.nodes.create("transform", name, parent);
  scene.nodes.create(type, name + "Shape", node);
  return node;
}

std::vector<std::string> names(const std::vector<StaticBox>& boxes) {
  std::vector<std::string> result;
  for (const StaticBox& box : boxes) result.push_back(box.name);
  return result;
}

TEST(Statics, AreWhatStandsStillAndHasASurface) {
  Scene scene;
  add(scene, "floor");
  add(scene, "wall", "nurbsSurface");
  add(scene, "camera", "camera");
  add(scene, "curve", "nurbsCurve");
  const NodeId group = scene.nodes.create("transform", "group");
  add(scene, "carried", "mesh", group);
  const NodeId ball = add(scene, "ball");
  for (const NodeId mover : {group, ball})
    for (const double frame : {1.0, 9.0}) scene.curves.set_key(mover, Channel::translateX, frame, frame);
  EXPECT_THAT(names(static_boxes(scene, 1.0)), testing::ElementsAre("|floor", "|wall"));
}

TEST(Statics, StandWhereTheyAreInTheWorldWithTheBoundsThatAreKnown) {
  Scene scene;
  const NodeId room = scene.nodes.create("transform", "room");
  scene.attributes.set_channel(room, Channel::translateX, 5.0);
  const NodeId floor = add(scene, "floor", "mesh", room);
  scene.attributes.set_channel(floor, Channel::scaleY, 3.0);
  const StaticBox box = static_boxes(scene, 1.0).at(0);
  EXPECT_EQ(box.world.translation(), (Vector{5, 0, 0}));
  EXPECT_EQ(box.world.m[1][1], 3.0);
  EXPECT_EQ(box.low, (Vector{-0.5, -0.5, -0.5}));
  EXPECT_EQ(box.high, (Vector{0.5, 0.5, 0.5}));
  scene.attributes.set_vectors(scene.nodes.shapes(floor)[0], standalone::kBounds,
                               std::make_shared<const std::vector<Vector>>(std::vector<Vector>{{0, 1, 2}, {3, 4, 5}}));
  EXPECT_EQ(static_boxes(scene, 1.0).at(0).low, (Vector{0, 1, 2}));
  EXPECT_EQ(static_boxes(scene, 1.0).at(0).high, (Vector{3, 4, 5}));
}

TEST(Statics, AreNotWhatADeformerMovesNorTheOriginalBesideIt) {
  Scene scene;
  const auto no_corners = std::make_shared<const std::vector<Vector>>();
  const NodeId body = add(scene, "body");
  scene.nodes.create("mesh", "bodyShapeOrig", body);
  scene.attributes.set_vectors(scene.nodes.shapes(body)[0], standalone::kBounds, no_corners);
  const NodeId skinned = scene.nodes.create("transform", "skinned");
  scene.attributes.set_vectors(skinned, standalone::kBounds, no_corners);
  add(scene, "floor");
  EXPECT_THAT(names(static_boxes(scene, 1.0)), testing::ElementsAre("|floor"));
}

TEST(Statics, AreTheLargestOfTooManyInTheScenesOrder) {
  Scene scene;
  for (std::size_t i = 0; i < kMaxStatics + 10; ++i) {
    const NodeId node = add(scene, "box" + std::to_string(i));
    scene.attributes.set_channel(node, Channel::scaleX, i < 5 ? 0.5 : i == 1000 ? 9.0 : 1.0);
  }
  const auto boxes = static_boxes(scene, 1.0);
  ASSERT_EQ(boxes.size(), kMaxStatics);
  EXPECT_EQ(boxes.front().name, "|box5");
  EXPECT_EQ(boxes[995].name, "|box1000");
  // Of the many that are equally large the first stay.
  EXPECT_EQ(boxes.back().name, "|box" + std::to_string(kMaxStatics + 4));
}

}  // namespace
}  // namespace vantorelix::session
