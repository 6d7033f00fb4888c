#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/error.h"
#include "standalone/scene/scene.h"

namespace vantorelix::standalone {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

// Every node that went, as "name type".
struct Removals {
  explicit Removals(Scene& scene) {
    scene.set_listener({{}, {}, [this, &scene](NodeId node, const std::string& type) {
                          all.push_back(std::string(scene.short_name(node)) + " " + type);
                        }});
  }
  std::vector<std::string> all;
};

TEST(SceneNodes, AShapeWithoutAParentGetsATransformWithTheDefaultNameOfItsType) {
  Scene s;
  s.register_shape_type("vantorelix");
  const NodeId shape = s.create_node("vantorelix", "vlx_ball_vizShape");
  EXPECT_EQ(s.long_name(shape), "|vantorelix1|vlx_ball_vizShape");
  EXPECT_TRUE(s.is_shape(shape));
  EXPECT_TRUE(s.is_transform(s.parent(shape)));
  EXPECT_EQ(s.long_name(s.create_node("camera", "")), "|camera1|cameraShape1");
  EXPECT_EQ(s.long_name(s.create_node("camera", "")), "|camera2|cameraShape2");
  EXPECT_EQ(s.long_name(s.create_node("nurbsCurve", "")), "|curve1|curveShape1");
}

TEST(SceneNodes, ATypeIsUnknownUntilItIsRegistered) {
  Scene s;
  EXPECT_TRUE(s.is_registered_type("joint"));
  EXPECT_FALSE(s.is_registered_type("vantorelix"));
  const NodeId before = s.create_node("vantorelix", "x");
  EXPECT_FALSE(s.is_shape(before));
  s.register_shape_type("vantorelix");
  EXPECT_TRUE(s.is_registered_type("vantorelix"));
  const NodeId after = s.create_node("vantorelix", "y");
  EXPECT_TRUE(s.is_shape(after));
  EXPECT_THAT(s.nodes_of_type("vantorelix"), ElementsAre(before, after));
  s.delete_node(before);
  EXPECT_THAT(s.nodes_of_type("vantorelix"), ElementsAre(after));
}

TEST(SceneNodes, EveryNodeOfARegisteredTypeHasItsAttributes) {
  Scene s;
  const NodeId before = s.create_node("marker", "x");
  s.add_attribute(before, "width", 9.0);
  const std::pair<std::string_view, host::Value> attributes[] = {{"width", 2.5}, {"shown", true}};
  s.register_shape_type("marker", attributes);
  const NodeId after = s.create_node("marker", "y"), another = s.create_node("marker", "z");
  EXPECT_EQ(s.attribute(before, "width"), host::Value(9.0));
  EXPECT_EQ(s.attribute(before, "shown"), host::Value(true));
  EXPECT_EQ(s.attribute(after, "width"), host::Value(2.5));
  s.set_attribute(after, "shown", 0);
  s.set_attribute(after, "width", 4);
  EXPECT_EQ(s.attribute(after, "shown"), host::Value(false)) << "a flag stays one";
  EXPECT_EQ(s.attribute(after, "width"), host::Value(4.0));
  EXPECT_EQ(s.attribute(another, "width"), host::Value(2.5));
  EXPECT_EQ(s.attribute(another, "shown"), host::Value(true));
  EXPECT_FALSE(s.has_attribute(s.create_node("mesh", "m"), "width"));
}

TEST(SceneNodes, UnnamedNodesCountUpOverTheWholeScene) {
  Scene s;
  const NodeId a = s.create_node("joint", "");
  EXPECT_EQ(s.short_name(a), "joint1");
  EXPECT_EQ(s.short_name(s.create_node("joint", "", a)), "joint2");
}

TEST(SceneNodes, DeletingTakesDescendantsShapesAndTheirOwnCurves) {
  Scene s;
  const NodeId a = s.create_node("transform", "a"), b = s.create_node("joint", "b", a);
  s.create_node("mesh", "bShape", b);
  const NodeId other = s.create_node("transform", "other");
  s.set_key(b, Channel::translateX, 1, 1);
  const NodeId shared = s.set_key(b, Channel::translateY, 1, 1);
  s.connect(shared, "output", other, "translateY");
  Removals removals(s);
  s.delete_node(a);
  EXPECT_THAT(removals.all, UnorderedElementsAre("a transform", "b joint", "bShape mesh", "b_translateX animCurveTL"));
  EXPECT_THAT(s.nodes(), ElementsAre(other, shared));
  EXPECT_EQ(s.driving_curve(other, Channel::translateY), shared);
}

TEST(SceneNodes, CurvesBehindConvertersGoWithThem) {
  Scene s;
  const NodeId a = s.create_node("transform", "a"), blend = s.create_node("pairBlend", "pb");
  const NodeId curve = s.create_curve(CurveKind::linear, "c");
  s.connect(curve, "o", blend, "itx1");
  s.connect(blend, "otx", a, "tx");
  s.delete_node(a);
  EXPECT_TRUE(s.nodes().empty());
}

TEST(SceneNodes, ALockedNodeAnywhereBelowRefusesTheWholeDelete) {
  Scene s;
  const NodeId a = s.create_node("transform", "a"), b = s.create_node("transform", "b", a);
  s.lock_node(b, true);
  Removals removals(s);
  try {
    s.delete_node(a);
    FAIL();
  } catch (const host::Error& error) {
    EXPECT_STREQ(error.what(), "Node 'b' is locked and cannot be deleted.");
  }
  EXPECT_TRUE(removals.all.empty());
  s.lock_node(b, false);
  s.delete_node(a);
  EXPECT_FALSE(s.exists(b));
}

TEST(SceneNodes, AMessageMayDeleteWhatWouldGoNext) {
  Scene s;
  const NodeId a = s.create_node("transform", "a"), b = s.create_node("transform", "b", a);
  std::vector<NodeId> told;
  s.set_listener({{}, {}, [&](NodeId node, const std::string&) {
                    told.push_back(node);
                    if (node == b) s.delete_node(a);
                  }});
  s.delete_node(a);
  EXPECT_TRUE(s.nodes().empty());
  EXPECT_THAT(told, ElementsAre(b, a));
}

TEST(SceneNodes, ReparentingKeepsLocalValuesAndRenamesOnAClash) {
  Scene s;
  const NodeId a = s.create_node("transform", "a"), x = s.create_node("transform", "x");
  s.create_node("transform", "x", a);
  s.set_channel(a, Channel::translateX, 10);
  s.set_channel(x, Channel::translateX, 1);
  s.set_parent(x, a);
  EXPECT_EQ(s.long_name(x), "|a|x1");
  EXPECT_EQ(s.channel(x, Channel::translateX), 1);
  EXPECT_EQ(s.world_matrix(x, 1).translation().x, 11);
  s.set_parent(x, kWorld);
  EXPECT_EQ(s.world_matrix(x, 1).translation().x, 1);
  EXPECT_EQ(s.children(a).size(), 1u);
}

TEST(SceneNodes, ANodeCannotHangUnderItselfOrAShape) {
  Scene s;
  const NodeId a = s.create_node("transform", "a"), b = s.create_node("transform", "b", a);
  const NodeId shape = s.create_node("mesh", "m", b);
  EXPECT_THROW(s.set_parent(a, b), host::Error);
  EXPECT_THROW(s.set_parent(a, a), host::Error);
  EXPECT_THROW(s.set_parent(a, shape), host::Error);
  EXPECT_THROW(s.set_parent(shape, kWorld), host::Error);
  EXPECT_THROW(s.create_node("transform", "c", shape), host::Error);
  EXPECT_EQ(s.long_name(shape), "|a|b|m");
}

TEST(SceneNodes, ChildrenKeepTheirOrderThroughDeletes) {
  Scene s;
  const NodeId a = s.create_node("transform", "a");
  std::vector<NodeId> kept;
  for (int i = 0; i < 40; ++i) {
    const NodeId n = s.create_node("transform", "n", a);
    if (i % 3 == 0) kept.push_back(n);
  }
  for (const NodeId n : std::vector<NodeId>(s.children(a)))
    if (std::find(kept.begin(), kept.end(), n) == kept.end()) s.delete_node(n);
  EXPECT_EQ(s.children(a), kept);
}

TEST(SceneNodes, TheRevisionChangesWithEveryEditThatCanBeSeen) {
  Scene s;
  std::uint64_t last = s.revision();
  const auto changed = [&] { return s.revision() != std::exchange(last, s.revision()); };
  const NodeId a = s.create_node("transform", "a"), b = s.create_node("transform", "b");
  EXPECT_TRUE(changed());
  s.rename(a, "c");
  EXPECT_TRUE(changed());
  s.set_parent(a, b);
  EXPECT_TRUE(changed());
  s.set_channel(a, Channel::scaleX, 2);
  EXPECT_TRUE(changed());
  const NodeId curve = s.set_key(a, Channel::translateX, 1, 1);
  EXPECT_TRUE(changed());
  s.set_infinity(curve, Infinity::linear, Infinity::linear);
  EXPECT_TRUE(changed());
  s.disconnect(a, "tx");
  EXPECT_TRUE(changed());
  s.set_frames_per_second(30);
  EXPECT_TRUE(changed());
  s.delete_node(b);
  EXPECT_TRUE(changed());
}

}  // namespace
}  // namespace vantorelix::standalone
