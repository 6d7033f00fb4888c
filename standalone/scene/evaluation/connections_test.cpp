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
  NodeId a = s.nodes.create("transform", "a");
  NodeId b = s.nodes.create("transform", "b");
  NodeId line = ramp("line", 1.0);  // frame f gives f

  NodeId ramp(const char* name, double slope) {
    const NodeId curve = s.curves.create(CurveKind::unitless, name);
    s.curves.assign(curve,
                    {{0, 0, Tangent::linear, Tangent::linear}, {100, 100 * slope, Tangent::linear, Tangent::linear}},
                    false, Infinity::linear, Infinity::linear);
    return curve;
  }
  // Both ways must agree on it.
  double x(NodeId node, double frame) {
    const double plain = s.evaluation.world_matrix(node, frame).translation().x;
    EXPECT_EQ(Evaluator(s.evaluation, node).translation(frame).x, plain);
    return plain;
  }
};

TEST_F(SceneConnections, ACurveDrivesAChannel) {
  s.connections.connect(line, "output", a, "translateX");
  EXPECT_DOUBLE_EQ(x(a, 7), 7);
  EXPECT_EQ(s.curves.driving_curve(a, Channel::translateX), line);
  EXPECT_TRUE(s.evaluation.is_animated(a));
  EXPECT_TRUE(s.evaluation.not_followed(a).empty());
  s.connections.disconnect(a, "tx");
  EXPECT_DOUBLE_EQ(x(a, 7), 0);
  EXPECT_FALSE(s.evaluation.is_animated(a));
}

TEST_F(SceneConnections, ANewSourceReplacesTheOld) {
  s.connections.connect(line, "o", a, "tx");
  s.connections.connect(ramp("other", 2), "o", a, "translateX");
  EXPECT_DOUBLE_EQ(x(a, 3), 6);
  s.nodes.remove(line);
  EXPECT_DOUBLE_EQ(x(a, 3), 6);
}

TEST_F(SceneConnections, AParentThatStandsStillAgainIsNotWhereItWas) {
  const NodeId child = s.nodes.create("transform", "child", a);
  s.connections.connect(line, "output", a, "tx");
  s.connections.connect(ramp("other", 2), "output", child, "sy");
  EXPECT_EQ(x(a, 7), 7);
  EXPECT_EQ(x(child, 7), 7);
  s.nodes.remove(line);
  EXPECT_EQ(x(child, 7), 0);
}

TEST_F(SceneConnections, AUnitConversionScales) {
  const NodeId conversion = s.nodes.create("unitConversion", "u");
  s.connections.connect(line, "o", conversion, "i");
  s.connections.connect(conversion, "o", a, "tx");
  EXPECT_DOUBLE_EQ(x(a, 5), 5);
  s.attributes.add(conversion, "cf", 0.5);
  EXPECT_DOUBLE_EQ(x(a, 5), 2.5);
  EXPECT_EQ(s.curves.driving_curve(a, Channel::translateX), line);
  EXPECT_THAT(s.curves.key_times(a), ElementsAre(0, 100));
}

TEST_F(SceneConnections, APairBlendMixesByItsWeight) {
  const NodeId blend = s.nodes.create("pairBlend", "pb");
  s.connections.connect(line, "o", blend, "inTranslateX1");
  s.connections.connect(ramp("double", 2), "o", blend, "itx2");
  s.connections.connect(blend, "outTranslateX", a, "tx");
  EXPECT_DOUBLE_EQ(x(a, 10), 20);  // its weight is 1 unless set
  s.attributes.add(blend, "weight", 0.25);
  EXPECT_DOUBLE_EQ(x(a, 10), 12.5);
  s.attributes.add(blend, "txm", 1);
  EXPECT_DOUBLE_EQ(x(a, 10), 10);
  s.attributes.add(blend, "txm", 2);
  EXPECT_DOUBLE_EQ(x(a, 10), 20);
  s.attributes.add(blend, "txm", 0);
  s.connections.connect(ramp("w", 0.01), "o", blend, "w");
  EXPECT_DOUBLE_EQ(x(a, 50), 75);
}

TEST_F(SceneConnections, APairBlendTurnsByAnglesOrByQuaternions) {
  const NodeId blend = s.nodes.create("pairBlend", "pb"), child = s.nodes.create("transform", "c", a);
  s.attributes.set_channel(child, Channel::translateX, 1);
  s.attributes.add(blend, "irz2", 6.0);
  s.attributes.add(blend, "w", 0.5);
  s.connections.connect(blend, "outRotate", a, "rotate");
  EXPECT_NEAR(x(child, 1), std::cos(3.0), 1e-12);
  s.attributes.add(blend, "ri", 1);
  EXPECT_NEAR(x(child, 1), std::cos((6.0 - 6.283185307179586) / 2), 1e-12);
}

TEST_F(SceneConnections, AChannelDrivesAnotherAndACompoundItsParts) {
  s.connections.connect(line, "o", a, "ty");
  s.connections.connect(a, "ty", b, "tx");
  EXPECT_DOUBLE_EQ(x(b, 4), 4);
  const NodeId c = s.nodes.create("transform", "c");
  s.connections.connect(b, "translate", c, "t");
  EXPECT_DOUBLE_EQ(x(c, 4), 4);
  s.connections.disconnect(b, "tx");
  s.attributes.set_channel(b, Channel::translateX, 9);
  EXPECT_DOUBLE_EQ(x(c, 4), 9);
  s.attributes.set_channel(b, Channel::translateX, 8);
  EXPECT_DOUBLE_EQ(x(c, 4), 8);
}

TEST_F(SceneConnections, ACompoundLeavesAPartThatHasItsOwnDriver) {
  s.attributes.set_channel(a, Channel::translateX, 3);
  s.attributes.set_channel(a, Channel::translateY, 5);
  s.connections.connect(a, "translate", b, "translate");
  s.connections.connect(line, "o", b, "translateX");
  EXPECT_DOUBLE_EQ(x(b, 4), 4);
  EXPECT_DOUBLE_EQ(s.evaluation.world_matrix(b, 4).translation().y, 5);
}

TEST_F(SceneConnections, WhatCannotBeFollowedKeepsItsStaticValueAndIsNamed) {
  s.attributes.set_channel(a, Channel::translateX, 3);
  const NodeId constraint = s.nodes.create("parentConstraint", "pc", a);
  s.connections.connect(constraint, "constraintTranslateX", a, "translateX");
  EXPECT_EQ(x(a, 1), 3);
  ASSERT_EQ(s.evaluation.not_followed(a).size(), 1u);
  EXPECT_EQ(s.evaluation.not_followed(a)[0],
            "a.translateX is driven by parentConstraint pc (constraintTranslateX), which is not followed; it keeps its "
            "static value; bake it before saving");
  const NodeId below = s.nodes.create("transform", "below", a);
  EXPECT_EQ(s.evaluation.not_followed(below).size(), 1u);
  EXPECT_TRUE(s.evaluation.not_followed(b).empty());
  s.attributes.set(below, "inheritsTransform", false);
  EXPECT_TRUE(s.evaluation.not_followed(below).empty());
}

TEST_F(SceneConnections, SetDrivenCurvesTimeWarpsAndUnknownNodesAreNotFollowed) {
  const NodeId c = s.nodes.create("transform", "c");
  s.connections.connect(s.nodes.create("animCurveUA", "driven"), "output", a, "rotateX");
  s.connections.connect(s.nodes.create("expression", "e"), "output[0]", b, "tx");
  s.connections.connect(line, "o", c, "tx");
  EXPECT_TRUE(s.evaluation.not_followed(c).empty());
  s.connections.connect(s.nodes.create("time", "time1"), "outTime", line, "input");
  EXPECT_TRUE(s.evaluation.not_followed(c).empty());
  s.connections.connect(s.nodes.create("animCurveTT", "warp"), "output", line, "input");
  EXPECT_THAT(s.evaluation.not_followed(a), ElementsAre(HasSubstr("animCurveUA driven")));
  EXPECT_THAT(s.evaluation.not_followed(b), ElementsAre(HasSubstr("expression e")));
  EXPECT_THAT(s.evaluation.not_followed(c), ElementsAre(HasSubstr("time warp of animCurveTU line")));
  EXPECT_EQ(x(c, 5), 0);
}

TEST_F(SceneConnections, CyclesAreReportedAndNotFollowed) {
  s.attributes.set_channel(b, Channel::translateX, 2);
  s.connections.connect(a, "tx", b, "tx");
  s.connections.connect(b, "tx", a, "tx");
  EXPECT_EQ(x(b, 1), 2);
  EXPECT_THAT(s.evaluation.not_followed(a), ElementsAre(HasSubstr("cycle")));
  EXPECT_FALSE(s.evaluation.is_animated(a));
  EXPECT_EQ(s.curves.driving_curve(a, Channel::translateX), kNoNode);
  EXPECT_FALSE(s.curves.has_keys(a));
}

TEST_F(SceneConnections, ConvertersInARingEndToo) {
  const NodeId u = s.nodes.create("unitConversion", "u"), v = s.nodes.create("pairBlend", "v");
  s.connections.connect(u, "o", v, "itx1");
  s.connections.connect(v, "otx", u, "i");
  s.connections.connect(u, "o", a, "tx");
  s.attributes.add(v, "w", 0.5);
  EXPECT_EQ(s.curves.driving_curve(a, Channel::translateX), kNoNode);
  EXPECT_TRUE(s.curves.key_times(a).empty());
  EXPECT_EQ(s.evaluation.not_followed(a).size(), 1u);
  s.nodes.remove(a);
}

TEST_F(SceneConnections, TooLongAChainIsRefusedRatherThanOverflowTheStack) {
  NodeId last = a;
  for (int i = 0; i < 100000; ++i) {
    const NodeId next = s.nodes.create("transform", "n");
    s.connections.connect(last, "tx", next, "tx");
    last = next;
  }
  EXPECT_THAT(s.evaluation.not_followed(last), ElementsAre(HasSubstr("too many connections")));
  EXPECT_EQ(x(last, 1), 0);
}

TEST_F(SceneConnections, ADiamondOfBlendsCostsNoMoreThanItsNodes) {
  NodeId last = s.nodes.create("pairBlend", "p");
  s.connections.connect(line, "o", last, "itx1");
  for (int i = 0; i < 100; ++i) {
    const NodeId next = s.nodes.create("pairBlend", "p");
    s.attributes.add(next, "w", 0.5);
    s.connections.connect(last, "otx", next, "itx1");
    s.connections.connect(last, "otx", next, "itx2");
    last = next;
  }
  s.connections.connect(last, "otx", a, "tx");
  EXPECT_TRUE(s.evaluation.not_followed(a).empty());
  EXPECT_EQ(s.curves.key_count(a), 2u);
}

TEST_F(SceneConnections, TheOffsetParentMatrixFollowsAnotherTransform) {
  const NodeId group = s.nodes.create("transform", "g"), child = s.nodes.create("transform", "c", group);
  s.attributes.set_channel(group, Channel::translateX, 100);
  s.connections.connect(line, "o", child, "tx");
  s.connections.connect(child, "worldMatrix[0]", a, "offsetParentMatrix");
  s.connections.connect(child, "m", b, "opm");
  EXPECT_DOUBLE_EQ(x(a, 5), 105);
  EXPECT_DOUBLE_EQ(x(b, 5), 5);
  EXPECT_TRUE(s.evaluation.is_animated(a));
  EXPECT_TRUE(s.evaluation.is_animated(b));
  EXPECT_FALSE(s.curves.has_keys(a));
  EXPECT_TRUE(s.evaluation.not_followed(a).empty());
}

TEST_F(SceneConnections, AnOffsetParentMatrixThatHangsOnItselfIsNotFollowed) {
  const NodeId child = s.nodes.create("transform", "c", a);
  s.attributes.set_channel(child, Channel::translateX, 4);
  s.attributes.set_channel(a, Channel::translateX, 1);
  s.connections.connect(child, "worldMatrix[0]", a, "offsetParentMatrix");
  EXPECT_EQ(x(child, 1), 5);
  EXPECT_THAT(s.evaluation.not_followed(child), ElementsAre(HasSubstr("cycle")));
  s.connections.connect(child, "matrix", a, "offsetParentMatrix");
  EXPECT_EQ(x(child, 1), 9);
  EXPECT_TRUE(s.evaluation.not_followed(child).empty());
}

TEST_F(SceneConnections, AnOffsetFromAnythingElseIsReported) {
  s.connections.connect(s.nodes.create("multMatrix", "mm"), "matrixSum", a, "opm");
  EXPECT_THAT(s.evaluation.not_followed(a), ElementsAre(HasSubstr("multMatrix mm")));
}

TEST_F(SceneConnections, KeyTimesComeCurveByCurveInOrderOfConnection) {
  s.curves.set_key(a, Channel::translateY, 5, 0);
  s.curves.set_key(a, Channel::translateX, 9, 0);
  s.curves.set_key(a, Channel::translateX, 2, 0);
  s.curves.set_key(a, Channel::translateY, 1, 0);
  EXPECT_THAT(s.curves.key_times(a), ElementsAre(1, 5, 2, 9));
  EXPECT_EQ(s.curves.key_count(a), 4u);
  EXPECT_THAT(s.curves.driving_curves(a), ElementsAre(s.curves.driving_curve(a, Channel::translateY),
                                                      s.curves.driving_curve(a, Channel::translateX)));
}

TEST_F(SceneConnections, AChannelIsWhatDrivesItAtTheFrameElseItsStaticValue) {
  s.connections.connect(line, "o", a, "tx");
  s.attributes.set_channel(a, Channel::translateY, 7);
  EXPECT_EQ(s.evaluation.channel_at(a, Channel::translateX, 25), s.curves.at(line).evaluate(25));
  EXPECT_NE(s.evaluation.channel_at(a, Channel::translateX, 25), s.evaluation.channel_at(a, Channel::translateX, 75));
  EXPECT_EQ(s.evaluation.channel_at(a, Channel::translateY, 25), 7);
  EXPECT_THROW(s.evaluation.channel_at(line, Channel::translateX, 25), host::Error);
}

TEST_F(SceneConnections, ANodeWithManyInputsKeepsThemInOrder) {
  const NodeId set = s.nodes.create("objectSet", "set");
  for (int i = 0; i < 500; ++i) s.connections.connect(a, "message", set, "dsm[" + std::to_string(i) + "]");
  for (int i = 0; i < 500; i += 4) s.connections.disconnect(set, "dsm[" + std::to_string(i) + "]");
  s.connections.connect(line, "o", set, "dsm[1]");
  EXPECT_EQ(s.curves.key_count(set), 2u);
  const NodeId late = s.curves.create(CurveKind::linear, "late");
  s.curves.set_key(late, 55, 0);
  s.connections.connect(late, "o", set, "dsm[0]");  // undone above: made anew, so it comes last
  EXPECT_THAT(s.curves.key_times(set), ElementsAre(0, 100, 55));
  s.nodes.remove(line);
  EXPECT_THAT(s.curves.key_times(set), ElementsAre(55));
}

TEST(SceneCurves, EditsSendTheirMessagesAtOnce) {
  Scene s;
  const NodeId a = s.nodes.create("transform", "a");
  std::string log;
  s.changes.set_listener({[&](NodeId) { log += "c"; }, [&](NodeId) { log += "k"; },
                          [&](NodeId, const std::string& type) { log += "-" + type; }});
  const auto heard = [&] { return std::exchange(log, ""); };
  const NodeId curve = s.curves.set_key(a, Channel::rotateX, 1, 1);
  EXPECT_EQ(s.nodes.type(curve), "animCurveTA");
  EXPECT_EQ(s.names.short_name(curve), "a_rotateX");
  EXPECT_EQ(heard(), "ck");
  EXPECT_EQ(s.curves.set_key(a, Channel::rotateX, 5, 2), curve);
  EXPECT_EQ(heard(), "ck");
  s.curves.set_infinity(curve, Infinity::cycle, Infinity::cycle);
  EXPECT_EQ(heard(), "c");
  EXPECT_FALSE(s.curves.remove_key(curve, 3));
  EXPECT_EQ(heard(), "");
  EXPECT_TRUE(s.curves.remove_key(curve, 1));
  EXPECT_EQ(heard(), "ck");
  EXPECT_TRUE(s.curves.remove_key(curve, 5));
  EXPECT_EQ(heard(), "ck-animCurveTA");
  EXPECT_FALSE(s.nodes.exists(curve));
  EXPECT_FALSE(s.curves.has_keys(a));
}

}  // namespace
}  // namespace vantorelix::standalone
