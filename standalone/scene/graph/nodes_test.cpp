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
    scene.changes.set_listener({{}, {}, [this, &scene](NodeId node, const std::string& type) {
                                  all.push_back(std::string(scene.names.short_name(node)) + " " + type);
                                }});
  }
  std::vector<std::string> all;
};

TEST(SceneNodes, AShapeWithoutAParentGetsATransformWithTheDefaultNameOfItsType) {
  Scene s;
  s.nodes.register_shape_type("vantorelix");
  const NodeId shape = s.nodes.create("vantorelix", "vlx_ball_vizShape");
  EXPECT_EQ(s.names.long_name(shape), "|vantorelix1|vlx_ball_vizShape");
  EXPECT_TRUE(s.nodes.is_shape(shape));
  EXPECT_TRUE(s.nodes.is_transform(s.nodes.parent(shape)));
  EXPECT_EQ(s.names.long_name(s.nodes.create("camera", "")), "|camera1|cameraShape1");
  EXPECT_EQ(s.names.long_name(s.nodes.create("camera", "")), "|camera2|cameraShape2");
  EXPECT_EQ(s.names.long_name(s.nodes.create("nurbsCurve", "")), "|curve1|curveShape1");
}

TEST(SceneNodes, ATypeIsUnknownUntilItIsRegistered) {
  Scene s;
  EXPECT_TRUE(s.nodes.is_registered_type("joint"));
  EXPECT_FALSE(s.nodes.is_registered_type("vantorelix"));
  const NodeId before = s.nodes.create("vantorelix", "x");
  EXPECT_FALSE(s.nodes.is_shape(before));
  s.nodes.register_shape_type("vantorelix");
  EXPECT_TRUE(s.nodes.is_registered_type("vantorelix"));
  const NodeId after = s.nodes.create("vantorelix", "y");
  EXPECT_TRUE(s.nodes.is_shape(after));
  EXPECT_THAT(s.nodes.of_type("vantorelix"), ElementsAre(before, after));
  s.nodes.remove(before);
  EXPECT_THAT(s.nodes.of_type("vantorelix"), ElementsAre(after));
}

TEST(SceneNodes, EveryNodeOfARegisteredTypeHasItsAttributes) {
  Scene s;
  const NodeId before = s.nodes.create("marker", "x");
  s.attributes.add(before, "width", 9.0);
  const std::pair<std::string_view, host::Value> attributes[] = {{"width", 2.5}, {"shown", true}};
  s.nodes.register_shape_type("marker", attributes);
  const NodeId after = s.nodes.create("marker", "y"), another = s.nodes.create("marker", "z");
  EXPECT_EQ(s.attributes.value(before, "width"), host::Value(9.0));
  EXPECT_EQ(s.attributes.value(before, "shown"), host::Value(true));
  EXPECT_EQ(s.attributes.value(after, "width"), host::Value(2.5));
  s.attributes.set(after, "shown", 0);
  s.attributes.set(after, "width", 4);
  EXPECT_EQ(s.attributes.value(after, "shown"), host::Value(false)) << "a flag stays one";
  EXPECT_EQ(s.attributes.value(after, "width"), host::Value(4.0));
  EXPECT_EQ(s.attributes.value(another, "width"), host::Value(2.5));
  EXPECT_EQ(s.attributes.value(another, "shown"), host::Value(true));
  EXPECT_FALSE(s.attributes.has(s.nodes.create("mesh", "m"), "width"));
}

TEST(SceneNodes, UnnamedNodesCountUpOverTheWholeScene) {
  Scene s;
  const NodeId a = s.nodes.create("joint", "");
  EXPECT_EQ(s.names.short_name(a), "joint1");
  EXPECT_EQ(s.names.short_name(s.nodes.create("joint", "", a)), "joint2");
}

TEST(SceneNodes, DeletingTakesDescendantsShapesAndTheirOwnCurves) {
  Scene s;
  const NodeId a = s.nodes.create("transform", "a"), b = s.nodes.create("joint", "b", a);
  s.nodes.create("mesh", "bShape", b);
  const NodeId other = s.nodes.create("transform", "other");
  s.curves.set_key(b, Channel::translateX, 1, 1);
  const NodeId shared = s.curves.set_key(b, Channel::translateY, 1, 1);
  s.connections.connect(shared, "output", other, "translateY");
  Removals removals(s);
  s.nodes.remove(a);
  EXPECT_THAT(removals.all, UnorderedElementsAre("a transform", "b joint", "bShape mesh", "b_translateX animCurveTL"));
  EXPECT_THAT(s.nodes.all(), ElementsAre(other, shared));
  EXPECT_EQ(s.curves.driving_curve(other, Channel::translateY), shared);
}

TEST(SceneNodes, CurvesBehindConvertersGoWithThem) {
  Scene s;
  const NodeId a = s.nodes.create("transform", "a"), blend = s.nodes.create("pairBlend", "pb");
  const NodeId curve = s.curves.create(CurveKind::linear, "c");
  s.connections.connect(curve, "o", blend, "itx1");
  s.connections.connect(blend, "otx", a, "tx");
  s.nodes.remove(a);
  EXPECT_TRUE(s.nodes.all().empty());
}

TEST(SceneNodes, ALockedNodeAnywhereBelowRefusesTheWholeDelete) {
  Scene s;
  const NodeId a = s.nodes.create("transform", "a"), b = s.nodes.create("transform", "b", a);
  s.nodes.lock(b, true);
  Removals removals(s);
  try {
    s.nodes.remove(a);
    FAIL();
  } catch (const host::Error& error) {
    EXPECT_STREQ(error.what(), "Node 'b' is locked and cannot be deleted.");
  }
  EXPECT_TRUE(removals.all.empty());
  s.nodes.lock(b, false);
  s.nodes.remove(a);
  EXPECT_FALSE(s.nodes.exists(b));
}

TEST(SceneNodes, AMessageMayDeleteWhatWouldGoNext) {
  Scene s;
  const NodeId a = s.nodes.create("transform", "a"), b = s.nodes.create("transform", "b", a);
  std::vector<NodeId> told;
  s.changes.set_listener({{}, {}, [&](NodeId node, const std::string&) {
                            told.push_back(node);
                            if (node == b) s.nodes.remove(a);
                          }});
  s.nodes.remove(a);
  EXPECT_TRUE(s.nodes.all().empty());
  EXPECT_THAT(told, ElementsAre(b, a));
}

TEST(SceneNodes, ReparentingKeepsLocalValuesAndRenamesOnAClash) {
  Scene s;
  const NodeId a = s.nodes.create("transform", "a"), x = s.nodes.create("transform", "x");
  s.nodes.create("transform", "x", a);
  s.attributes.set_channel(a, Channel::translateX, 10);
  s.attributes.set_channel(x, Channel::translateX, 1);
  s.nodes.set_parent(x, a);
  EXPECT_EQ(s.names.long_name(x), "|a|x1");
  EXPECT_EQ(s.attributes.channel(x, Channel::translateX), 1);
  EXPECT_EQ(s.evaluation.world_matrix(x, 1).translation().x, 11);
  s.nodes.set_parent(x, kWorld);
  EXPECT_EQ(s.evaluation.world_matrix(x, 1).translation().x, 1);
  EXPECT_EQ(s.nodes.children(a).size(), 1u);
}

TEST(SceneNodes, ANodeCannotHangUnderItselfOrAShape) {
  Scene s;
  const NodeId a = s.nodes.create("transform", "a"), b = s.nodes.create("transform", "b", a);
  const NodeId shape = s.nodes.create("mesh", "m", b);
  EXPECT_THROW(s.nodes.set_parent(a, b), host::Error);
  EXPECT_THROW(s.nodes.set_parent(a, a), host::Error);
  EXPECT_THROW(s.nodes.set_parent(a, shape), host::Error);
  EXPECT_THROW(s.nodes.set_parent(shape, kWorld), host::Error);
  EXPECT_THROW(s.nodes.create("transform", "c", shape), host::Error);
  EXPECT_EQ(s.names.long_name(shape), "|a|b|m");
}

TEST(SceneNodes, ChildrenKeepTheirOrderThroughDeletes) {
  Scene s;
  const NodeId a = s.nodes.create("transform", "a");
  std::vector<NodeId> kept;
  for (int i = 0; i < 40; ++i) {
    const NodeId n = s.nodes.create("transform", "n", a);
    if (i % 3 == 0) kept.push_back(n);
  }
  for (const NodeId n : std::vector<NodeId>(s.nodes.children(a)))
    if (std::find(kept.begin(), kept.end(), n) == kept.end()) s.nodes.remove(n);
  EXPECT_EQ(s.nodes.children(a), kept);
}

TEST(SceneNodes, TheRevisionChangesWithEveryEditThatCanBeSeen) {
  Scene s;
  std::uint64_t last = s.changes.revision();
  const auto changed = [&] { return s.changes.revision() != std::exchange(last, s.changes.revision()); };
  const NodeId a = s.nodes.create("transform", "a"), b = s.nodes.create("transform", "b");
  EXPECT_TRUE(changed());
  s.nodes.rename(a, "c");
  EXPECT_TRUE(changed());
  s.nodes.set_parent(a, b);
  EXPECT_TRUE(changed());
  s.attributes.set_channel(a, Channel::scaleX, 2);
  EXPECT_TRUE(changed());
  const NodeId curve = s.curves.set_key(a, Channel::translateX, 1, 1);
  EXPECT_TRUE(changed());
  s.curves.set_infinity(curve, Infinity::linear, Infinity::linear);
  EXPECT_TRUE(changed());
  s.connections.disconnect(a, "tx");
  EXPECT_TRUE(changed());
  s.settings.set_frames_per_second(30);
  EXPECT_TRUE(changed());
  s.nodes.remove(b);
  EXPECT_TRUE(changed());
}

}  // namespace
}  // namespace vantorelix::standalone
