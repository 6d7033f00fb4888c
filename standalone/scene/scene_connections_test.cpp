#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/error.h"
#include "standalone/scene/evaluation/evaluator.h"
#include "standalone/scene/scene.h"

namespace vantorelix::standalone {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

struct SceneConnections : testing::Test {
  Scene s;
  NodeId a = s.create_node("transform", "a");
  NodeId b = s.create_node("transform", "b");
  NodeId line = ramp("line", 1.0);  // frame f gives f

  NodeId ramp(const char* name, double slope) {
    const NodeId curve = s.create_curve(CurveKind::unitless, name);
    s.assign_curve(curve,
                   {{0, 0, Tangent::linear, Tangent::linear}, {100, 100 * slope, Tangent::linear, Tangent::linear}},
                   false, Infinity::linear, Infinity::linear);
    return curve;
  }
  // Both ways must agree on it.
  double x(NodeId node, double frame) {
    const double plain = s.world_matrix(node, frame).translation().x;
    EXPECT_EQ(Evaluator(s, node).translation(frame).x, plain);
    return plain;
  }
};

TEST_F(SceneConnections, ACurveDrivesAChannel) {
  s.connect(line, "output", a, "translateX");
  EXPECT_DOUBLE_EQ(x(a, 7), 7);
  EXPECT_EQ(s.driving_curve(a, Channel::translateX), line);
  EXPECT_TRUE(s.is_animated(a));
  EXPECT_TRUE(s.not_followed(a).empty());
  s.disconnect(a, "tx");
  EXPECT_DOUBLE_EQ(x(a, 7), 0);
  EXPECT_FALSE(s.is_animated(a));
}

TEST_F(SceneConnections, ANewSourceReplacesTheOld) {
  s.connect(line, "o", a, "tx");
  s.connect(ramp("other", 2), "o", a, "translateX");
  EXPECT_DOUBLE_EQ(x(a, 3), 6);
  s.delete_node(line);
  EXPECT_DOUBLE_EQ(x(a, 3), 6);
}

TEST_F(SceneConnections, AParentThatStandsStillAgainIsNotWhereItWas) {
  const NodeId child = s.create_node("transform", "child", a);
  s.connect(line, "output", a, "tx");
  s.connect(ramp("other", 2), "output", child, "sy");
  EXPECT_EQ(x(a, 7), 7);
  EXPECT_EQ(x(child, 7), 7);
  s.delete_node(line);
  EXPECT_EQ(x(child, 7), 0);
}

TEST_F(SceneConnections, AUnitConversionScales) {
  const NodeId conversion = s.create_node("unitConversion", "u");
  s.connect(line, "o", conversion, "i");
  s.connect(conversion, "o", a, "tx");
  EXPECT_DOUBLE_EQ(x(a, 5), 5);
  s.add_attribute(conversion, "cf", 0.5);
  EXPECT_DOUBLE_EQ(x(a, 5), 2.5);
  EXPECT_EQ(s.driving_curve(a, Channel::translateX), line);
  EXPECT_THAT(s.key_times(a), ElementsAre(0, 100));
}

TEST_F(SceneConnections, APairBlendMixesByItsWeight) {
  const NodeId blend = s.create_node("pairBlend", "pb");
  s.connect(line, "o", blend, "inTranslateX1");
  s.connect(ramp("double", 2), "o", blend, "itx2");
  s.connect(blend, "outTranslateX", a, "tx");
  EXPECT_DOUBLE_EQ(x(a, 10), 20);  // its weight is 1 unless set
  s.add_attribute(blend, "weight", 0.25);
  EXPECT_DOUBLE_EQ(x(a, 10), 12.5);
  s.add_attribute(blend, "txm", 1);
  EXPECT_DOUBLE_EQ(x(a, 10), 10);
  s.add_attribute(blend, "txm", 2);
  EXPECT_DOUBLE_EQ(x(a, 10), 20);
  s.add_attribute(blend, "txm", 0);
  s.connect(ramp("w", 0.01), "o", blend, "w");
  EXPECT_DOUBLE_EQ(x(a, 50), 75);
}

TEST_F(SceneConnections, APairBlendTurnsByAnglesOrByQuaternions) {
  const NodeId blend = s.create_node("pairBlend", "pb"), child = s.create_node("transform", "c", a);
  s.set_channel(child, Channel::translateX, 1);
  s.add_attribute(blend, "irz2", 6.0);
  s.add_attribute(blend, "w", 0.5);
  s.connect(blend, "outRotate", a, "rotate");
  EXPECT_NEAR(x(child, 1), std::cos(3.0), 1e-12);
  s.add_attribute(blend, "ri", 1);
  EXPECT_NEAR(x(child, 1), std::cos((6.0 - 6.283185307179586) / 2), 1e-12);
}

TEST_F(SceneConnections, AChannelDrivesAnotherAndACompoundItsParts) {
  s.connect(line, "o", a, "ty");
  s.connect(a, "ty", b, "tx");
  EXPECT_DOUBLE_EQ(x(b, 4), 4);
  const NodeId c = s.create_node("transform", "c");
  s.connect(b, "translate", c, "t");
  EXPECT_DOUBLE_EQ(x(c, 4), 4);
  s.disconnect(b, "tx");
  s.set_channel(b, Channel::translateX, 9);
  EXPECT_DOUBLE_EQ(x(c, 4), 9);
  s.set_channel(b, Channel::translateX, 8);
  EXPECT_DOUBLE_EQ(x(c, 4), 8);
}

TEST_F(SceneConnections, ACompoundLeavesAPartThatHasItsOwnDriver) {
  s.set_channel(a, Channel::translateX, 3);
  s.set_channel(a, Channel::translateY, 5);
  s.connect(a, "translate", b, "translate");
  s.connect(line, "o", b, "translateX");
  EXPECT_DOUBLE_EQ(x(b, 4), 4);
  EXPECT_DOUBLE_EQ(s.world_matrix(b, 4).translation().y, 5);
}

TEST_F(SceneConnections, WhatCannotBeFollowedKeepsItsStaticValueAndIsNamed) {
  s.set_channel(a, Channel::translateX, 3);
  const NodeId constraint = s.create_node("parentConstraint", "pc", a);
  s.connect(constraint, "constraintTranslateX", a, "translateX");
  EXPECT_EQ(x(a, 1), 3);
  ASSERT_EQ(s.not_followed(a).size(), 1u);
  EXPECT_EQ(s.not_followed(a)[0],
            "a.translateX is driven by parentConstraint pc (constraintTranslateX), which is not followed; it keeps its "
            "static value");
  const NodeId below = s.create_node("transform", "below", a);
  EXPECT_EQ(s.not_followed(below).size(), 1u);
  EXPECT_TRUE(s.not_followed(b).empty());
  s.set_attribute(below, "inheritsTransform", false);
  EXPECT_TRUE(s.not_followed(below).empty());
}

TEST_F(SceneConnections, SetDrivenCurvesTimeWarpsAndUnknownNodesAreNotFollowed) {
  const NodeId c = s.create_node("transform", "c");
  s.connect(s.create_node("animCurveUA", "driven"), "output", a, "rotateX");
  s.connect(s.create_node("expression", "e"), "output[0]", b, "tx");
  s.connect(line, "o", c, "tx");
  EXPECT_TRUE(s.not_followed(c).empty());
  s.connect(s.create_node("time", "time1"), "outTime", line, "input");
  EXPECT_TRUE(s.not_followed(c).empty());
  s.connect(s.create_node("animCurveTT", "warp"), "output", line, "input");
  EXPECT_THAT(s.not_followed(a), ElementsAre(HasSubstr("animCurveUA driven")));
  EXPECT_THAT(s.not_followed(b), ElementsAre(HasSubstr("expression e")));
  EXPECT_THAT(s.not_followed(c), ElementsAre(HasSubstr("time warp of animCurveTU line")));
  EXPECT_EQ(x(c, 5), 0);
}

TEST_F(SceneConnections, CyclesAreReportedAndNotFollowed) {
  s.set_channel(b, Channel::translateX, 2);
  s.connect(a, "tx", b, "tx");
  s.connect(b, "tx", a, "tx");
  EXPECT_EQ(x(b, 1), 2);
  EXPECT_THAT(s.not_followed(a), ElementsAre(HasSubstr("cycle")));
  EXPECT_FALSE(s.is_animated(a));
  EXPECT_EQ(s.driving_curve(a, Channel::translateX), kNoNode);
  EXPECT_FALSE(s.has_keys(a));
}

TEST_F(SceneConnections, ConvertersInARingEndToo) {
  const NodeId u = s.create_node("unitConversion", "u"), v = s.create_node("pairBlend", "v");
  s.connect(u, "o", v, "itx1");
  s.connect(v, "otx", u, "i");
  s.connect(u, "o", a, "tx");
  s.add_attribute(v, "w", 0.5);
  EXPECT_EQ(s.driving_curve(a, Channel::translateX), kNoNode);
  EXPECT_TRUE(s.key_times(a).empty());
  EXPECT_EQ(s.not_followed(a).size(), 1u);
  s.delete_node(a);
}

TEST_F(SceneConnections, TooLongAChainIsRefusedRatherThanOverflowTheStack) {
  NodeId last = a;
  for (int i = 0; i < 100000; ++i) {
    const NodeId next = s.create_node("transform", "n");
    s.connect(last, "tx", next, "tx");
    last = next;
  }
  EXPECT_THAT(s.not_followed(last), ElementsAre(HasSubstr("too many connections")));
  EXPECT_EQ(x(last, 1), 0);
}

TEST_F(SceneConnections, ADiamondOfBlendsCostsNoMoreThanItsNodes) {
  NodeId last = s.create_node("pairBlend", "p");
  s.connect(line, "o", last, "itx1");
  for (int i = 0; i < 100; ++i) {
    const NodeId next = s.create_node("pairBlend", "p");
    s.add_attribute(next, "w", 0.5);
    s.connect(last, "otx", next, "itx1");
    s.connect(last, "otx", next, "itx2");
    last = next;
  }
  s.connect(last, "otx", a, "tx");
  EXPECT_TRUE(s.not_followed(a).empty());
  EXPECT_EQ(s.key_count(a), 2u);
}

TEST_F(SceneConnections, TheOffsetParentMatrixFollowsAnotherTransform) {
  const NodeId group = s.create_node("transform", "g"), child = s.create_node("transform", "c", group);
  s.set_channel(group, Channel::translateX, 100);
  s.connect(line, "o", child, "tx");
  s.connect(child, "worldMatrix[0]", a, "offsetParentMatrix");
  s.connect(child, "m", b, "opm");
  EXPECT_DOUBLE_EQ(x(a, 5), 105);
  EXPECT_DOUBLE_EQ(x(b, 5), 5);
  EXPECT_TRUE(s.is_animated(a));
  EXPECT_TRUE(s.is_animated(b));
  EXPECT_FALSE(s.has_keys(a));
  EXPECT_TRUE(s.not_followed(a).empty());
}

TEST_F(SceneConnections, AnOffsetParentMatrixThatHangsOnItselfIsNotFollowed) {
  const NodeId child = s.create_node("transform", "c", a);
  s.set_channel(child, Channel::translateX, 4);
  s.set_channel(a, Channel::translateX, 1);
  s.connect(child, "worldMatrix[0]", a, "offsetParentMatrix");
  EXPECT_EQ(x(child, 1), 5);
  EXPECT_THAT(s.not_followed(child), ElementsAre(HasSubstr("cycle")));
  s.connect(child, "matrix", a, "offsetParentMatrix");
  EXPECT_EQ(x(child, 1), 9);
  EXPECT_TRUE(s.not_followed(child).empty());
}

TEST_F(SceneConnections, AnOffsetFromAnythingElseIsReported) {
  s.connect(s.create_node("multMatrix", "mm"), "matrixSum", a, "opm");
  EXPECT_THAT(s.not_followed(a), ElementsAre(HasSubstr("multMatrix mm")));
}

TEST_F(SceneConnections, KeyTimesComeCurveByCurveInOrderOfConnection) {
  s.set_key(a, Channel::translateY, 5, 0);
  s.set_key(a, Channel::translateX, 9, 0);
  s.set_key(a, Channel::translateX, 2, 0);
  s.set_key(a, Channel::translateY, 1, 0);
  EXPECT_THAT(s.key_times(a), ElementsAre(1, 5, 2, 9));
  EXPECT_EQ(s.key_count(a), 4u);
  EXPECT_THAT(s.driving_curves(a),
              ElementsAre(s.driving_curve(a, Channel::translateY), s.driving_curve(a, Channel::translateX)));
}

TEST_F(SceneConnections, AChannelIsWhatDrivesItAtTheFrameElseItsStaticValue) {
  s.connect(line, "o", a, "tx");
  s.set_channel(a, Channel::translateY, 7);
  EXPECT_EQ(s.channel_at(a, Channel::translateX, 25), s.curve(line).evaluate(25));
  EXPECT_NE(s.channel_at(a, Channel::translateX, 25), s.channel_at(a, Channel::translateX, 75));
  EXPECT_EQ(s.channel_at(a, Channel::translateY, 25), 7);
  EXPECT_THROW(s.channel_at(line, Channel::translateX, 25), host::Error);
}

TEST_F(SceneConnections, ANodeWithManyInputsKeepsThemInOrder) {
  const NodeId set = s.create_node("objectSet", "set");
  for (int i = 0; i < 500; ++i) s.connect(a, "message", set, "dsm[" + std::to_string(i) + "]");
  for (int i = 0; i < 500; i += 4) s.disconnect(set, "dsm[" + std::to_string(i) + "]");
  s.connect(line, "o", set, "dsm[1]");
  EXPECT_EQ(s.key_count(set), 2u);
  const NodeId late = s.create_curve(CurveKind::linear, "late");
  s.set_key(late, 55, 0);
  s.connect(late, "o", set, "dsm[0]");  // undone above: made anew, so it comes last
  EXPECT_THAT(s.key_times(set), ElementsAre(0, 100, 55));
  s.delete_node(line);
  EXPECT_THAT(s.key_times(set), ElementsAre(55));
}

TEST(SceneCurves, EditsSendTheirMessagesAtOnce) {
  Scene s;
  const NodeId a = s.create_node("transform", "a");
  std::string log;
  s.set_listener({[&](NodeId) { log += "c"; }, [&](NodeId) { log += "k"; },
                  [&](NodeId, const std::string& type) { log += "-" + type; }});
  const auto heard = [&] { return std::exchange(log, ""); };
  const NodeId curve = s.set_key(a, Channel::rotateX, 1, 1);
  EXPECT_EQ(s.type(curve), "animCurveTA");
  EXPECT_EQ(s.short_name(curve), "a_rotateX");
  EXPECT_EQ(heard(), "ck");
  EXPECT_EQ(s.set_key(a, Channel::rotateX, 5, 2), curve);
  EXPECT_EQ(heard(), "ck");
  s.set_infinity(curve, Infinity::cycle, Infinity::cycle);
  EXPECT_EQ(heard(), "c");
  EXPECT_FALSE(s.remove_key(curve, 3));
  EXPECT_EQ(heard(), "");
  EXPECT_TRUE(s.remove_key(curve, 1));
  EXPECT_EQ(heard(), "ck");
  EXPECT_TRUE(s.remove_key(curve, 5));
  EXPECT_EQ(heard(), "ck-animCurveTA");
  EXPECT_FALSE(s.exists(curve));
  EXPECT_FALSE(s.has_keys(a));
}

}  // namespace
}  // namespace vantorelix::standalone
