#include "tests/support/fake_host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/error.h"

namespace vantorelix::support {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

int calls = 0;
FakeHost* requeuing = nullptr;
void count_call() { ++calls; }
void count_and_requeue() {
  ++calls;
  requeuing->evalDeferred({"again", count_and_requeue});
}

TEST(FakeHost, FindsNodesByAnyUniqueEndOfTheirPath) {
  FakeHost fake;
  fake.add("|a|ball");
  fake.add("|b|ball");
  EXPECT_EQ(fake.node("a|ball").path, "|a|ball");
  EXPECT_EQ(fake.node("|b|ball").path, "|b|ball");
  EXPECT_TRUE(fake.objExists("ball"));
  EXPECT_THROW(fake.node("ball"), host::Error);
  EXPECT_FALSE(fake.objExists("all"));
  EXPECT_FALSE(fake.objExists("|ball"));
}

TEST(FakeHost, MakesRenamesAndMovesATrailsNodes) {
  FakeHost fake;
  const std::string shape = fake.createNode("vantorelix", "vlx_ball_vizShape");
  EXPECT_THAT(fake.listRelatives_parent(shape), ElementsAre("|vlx_ball_viz"));
  EXPECT_EQ(fake.rename("|vlx_ball_viz", "vlx_ball_viz"), "vlx_ball_viz");
  fake.group_empty("vantorelixs_grp");
  fake.parent("vlx_ball_viz", "vantorelixs_grp");
  EXPECT_THAT(fake.listRelatives_shapes("vlx_ball_viz"),
              ElementsAre("|vantorelixs_grp|vlx_ball_viz|vlx_ball_vizShape"));
  EXPECT_THAT(fake.ls_type("vantorelix"), ElementsAre("vlx_ball_vizShape"));
  fake.delete_("vantorelixs_grp");
  EXPECT_THAT(fake.nodes, IsEmpty());
}

TEST(FakeHost, GivesTakenNamesANumber) {
  FakeHost fake;
  fake.add("|a");
  fake.add("|b");
  EXPECT_EQ(fake.rename("b", "a"), "a1");
  EXPECT_EQ(fake.curve(3, {}, "a"), "a2");
}

TEST(FakeHost, DeferredCallsRunOneAtATimeInOrder) {
  FakeHost fake;
  calls = 0;
  fake.evalDeferred({"count", count_call});
  fake.evalDeferred({"count", count_call});
  EXPECT_TRUE(fake.run_deferred());
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(fake.run_all_deferred(), 1u);
  EXPECT_FALSE(fake.run_deferred());
  requeuing = &fake;
  fake.evalDeferred({"again", count_and_requeue});
  EXPECT_EQ(fake.run_all_deferred(5), 5u);
}

TEST(FakeHost, TheClockMovesOnlyAsItIsTold) {
  FakeHost fake;
  fake.add("|ball");
  const double start = fake.time();
  EXPECT_EQ(fake.time(), start);
  fake.advance_per_reading = 0.5;
  EXPECT_EQ(fake.time(), start);
  EXPECT_EQ(fake.time(), start + 0.5);
  fake.advance_per_reading = 0.0;
  fake.advance_per_evaluation = 2.0;
  fake.getAttr_matrix("ball.worldMatrix[0]", 1.0);
  EXPECT_EQ(fake.time(), start + 3.0);
}

TEST(FakeHost, MessagesReachTheirSubscribersUntilRemoved) {
  FakeHost fake;
  calls = 0;
  const host::Value curve = fake.addAnimCurveEditedCallback({"count", count_call});
  fake.addNodeRemovedCallback({"count", count_call}, "animCurve");
  fake.fire_curve_edited();
  fake.fire_key_edited();
  fake.fire_node_removed("transform");
  EXPECT_EQ(calls, 1);
  fake.fire_node_removed();
  EXPECT_EQ(calls, 2);
  fake.removeCallback(curve);
  fake.fire_curve_edited();
  EXPECT_EQ(calls, 2);
  EXPECT_THROW(fake.removeCallback(curve), host::Error);
}

TEST(FakeHost, RefusesTheAttributesItIsToldTo) {
  FakeHost fake;
  fake.add("|a|aShape", "vantorelix");
  fake.add("|b|bShape", "vantorelix");
  fake.refused = {"keyTimes", "bShape.lineWidth"};
  EXPECT_THROW(fake.findPlug("aShape", "keyTimes"), host::Error);
  EXPECT_THROW(fake.setAttr("|b|bShape.lineWidth", 1), host::Error);
  fake.setAttr("|a|aShape.lineWidth", 1);
  EXPECT_EQ(fake.node("aShape").attributes["lineWidth"], host::Value(1));
}

TEST(FakeHost, APlugOfANodeThatHasGoneThrows) {
  FakeHost fake;
  fake.add("|ball");
  const auto plug = fake.findPlug("ball", "worldMatrix");
  EXPECT_EQ(plug->translation_at(3.0, fake.ui_unit), (Vector{3.0, 0.0, 0.0}));
  fake.remove("ball");
  EXPECT_THROW(plug->translation_at(3.0, fake.ui_unit), host::Error);
}

TEST(FakeHost, TheSelectionForgetsWhatHasGone) {
  FakeHost fake;
  fake.add("|a|ball");
  fake.add("|cube");
  fake.selection = {"ball", "|cube"};
  EXPECT_THAT(fake.ls_selection(), ElementsAre("|a|ball", "|cube"));
  fake.remove("ball");
  EXPECT_THAT(fake.ls_selection(), ElementsAre("|cube"));
}

}  // namespace
}  // namespace vantorelix::support
