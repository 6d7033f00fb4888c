// Animation curves and connections of Maya ASCII scenes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "standalone/formats/maya/maya_test_scene.h"

namespace vantorelix::standalone {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// --- curves -----------------------------------------------------------------------------------------------------

TEST(MayaAscii, KeysAreReadWholeInPiecesAndPartByPart) {
  for (const char* values :
       {"setAttr -s 3 \".ktv[0:2]\"  1 10 5 20 9 30;",
        "setAttr \".ktv[0]\" 1 10;setAttr -s 2 \".keyTimeValue[1:2]\" 5 20 9 30;",
        "setAttr \".ktv[2]\" 9 30;setAttr -s 3 \".ktv\";setAttr \".ktv[0:1]\" 1 10 5 20;",
        "setAttr \".ktv[0].kt\" 1;setAttr \".ktv[0].kv\" 10;setAttr \"c.ktv[1:2]\" 5 20 9 30;",
        "select -ne \"c\";setAttr \".ktv[0:1]\" 1 10 5 20;createNode transform;setAttr \"c.ktv[2]\" 9 30;"}) {
    const Scene scene = clean(curve(values));
    const auto& keys = only_curve(scene).keys();
    ASSERT_EQ(keys.size(), 3u) << values;
    EXPECT_EQ(keys[0].time, 1.0);
    EXPECT_EQ(keys[1].value, 20.0);
    EXPECT_EQ(keys[2].value, 30.0);
  }
}

TEST(MayaAscii, HolesAmongTheKeysCloseUp) {
  const Scene scene = clean(curve("setAttr \".ktv[0]\" 1 10;setAttr \".ktv[7]\" 5 20;"));
  EXPECT_EQ(only_curve(scene).keys().size(), 2u);
}

TEST(MayaAscii, TangentsComeFromTheCurveUnlessAKeyHasItsOwn) {
  const Scene scene =
      clean(curve("setAttr \".tan\" 9;setAttr -s 3 \".ktv[0:2]\" 1 0 2 0 3 0;setAttr -s 3 \".kit[1:2]\" 1 18;setAttr "
                  "-s 3 \".kot[0:1]\" 5 3;"));
  const auto& keys = only_curve(scene).keys();
  EXPECT_EQ(keys[0].in, Tangent::spline);
  EXPECT_EQ(keys[1].in, Tangent::fixed);
  EXPECT_EQ(keys[2].in, Tangent::automatic);
  EXPECT_EQ(keys[0].out, Tangent::step);
  EXPECT_EQ(keys[1].out, Tangent::flat);
  EXPECT_EQ(keys[2].out, Tangent::spline);
}

TEST(MayaAscii, TheTangentOfTheCurveCountsWhereverItStands) {
  const Scene scene = clean(curve("setAttr \".ktv[0:1]\" 1 0 2 0;setAttr \".kit[1]\" 3;setAttr \".tan\" 2;"));
  const auto& keys = only_curve(scene).keys();
  EXPECT_EQ(keys[0].in, Tangent::linear);
  EXPECT_EQ(keys[1].in, Tangent::flat);
  EXPECT_EQ(keys[1].out, Tangent::linear);
}

TEST(MayaAscii, CurvesAreWeightedUnlessTheySayNot) {
  EXPECT_TRUE(only_curve(clean(curve("setAttr \".ktv[0]\" 1 0;"))).weighted());
  EXPECT_FALSE(only_curve(clean(curve("setAttr \".wgt\" no;setAttr \".ktv[0]\" 1 0;"))).weighted());
  EXPECT_TRUE(only_curve(clean(curve("setAttr \".weightedTangents\" yes;setAttr \".ktv[0]\" 1 0;"))).weighted());
}

TEST(MayaAscii, InfinityIsReadForEitherSide) {
  const Scene scene = clean(curve("setAttr \".ktv[0]\" 1 0;setAttr \".pre\" 3;setAttr \".pst\" 4;"));
  EXPECT_EQ(only_curve(scene).pre_infinity(), Infinity::cycle);
  EXPECT_EQ(only_curve(scene).post_infinity(), Infinity::cycle_offset);
  const Scene full = clean(curve("setAttr \".ktv[0]\" 1 0;setAttr \".preInfinity\" 1;setAttr \".postInfinity\" 5;"));
  EXPECT_EQ(only_curve(full).pre_infinity(), Infinity::linear);
  EXPECT_EQ(only_curve(full).post_infinity(), Infinity::oscillate);
}

TEST(MayaAscii, AngularKeysBecomeRadiansAndTheirTangentsAreRadiansAlready) {
  const std::string values =
      "setAttr \".wgt\" no;setAttr -s 2 \".ktv[0:1]\" 1 90 2 180;setAttr -s 2 \".kot[0:1]\" 1 1;"
      "setAttr -s 2 \".kox[0:1]\" 0.5 1;setAttr -s 2 \".koy[0:1]\" 0.25 0;";
  const Scene scene = clean(curve(values, "animCurveTA"));
  EXPECT_DOUBLE_EQ(only_curve(scene).keys()[0].value, 90 * kDegree);
  EXPECT_EQ(only_curve(scene).keys()[0].out_x, 0.5);
  EXPECT_EQ(only_curve(scene).keys()[0].out_y, 0.25);
  const Scene radians = clean("currentUnit -a rad;" + curve(values, "animCurveTA"));
  EXPECT_EQ(only_curve(radians).keys()[0].value, 90.0);
  EXPECT_EQ(only_curve(radians).keys()[0].out_y, 0.25);
}

TEST(MayaAscii, TangentsOfLengthsAreInCentimetresWhateverTheUnit) {
  const Scene scene = clean("currentUnit -l m;" + curve("setAttr \".ktv[0]\" 1 3;setAttr \".koy[0]\" 50;"));
  EXPECT_EQ(only_curve(scene).keys()[0].value, 3.0);
  EXPECT_EQ(only_curve(scene).keys()[0].out_y, 0.5);
}

TEST(MayaAscii, AFixedTangentHasTheSlopeThatTheFileGives) {
  // Half a unit a frame at 25 frames a second out of the first key, into a flat one: a cubic by hand.
  const Scene scene =
      clean("currentUnit -t pal;" + curve("setAttr \".wgt\" no;setAttr \".tan\" 1;setAttr -s 2 \".ktv[0:1]\" 0 0 4 8;"
                                          "setAttr -s 2 \".kox[0:1]\" 1 1;setAttr -s 2 \".koy[0:1]\" 12.5 0;"
                                          "setAttr -s 2 \".kix[0:1]\" 1 1;setAttr -s 2 \".kiy[0:1]\" 12.5 0;"));
  const double t = 0.25, from = 0.5 * 4;
  const double expected = from * (t * t * t - 2 * t * t + t) + 8 * (3 * t * t - 2 * t * t * t);
  EXPECT_NEAR(only_curve(scene).evaluate(1.0), expected, 1e-12);
}

TEST(MayaAscii, BadKeysAreAnErrorOnTheirLine) {
  EXPECT_THAT(error_of(curve("\nsetAttr \".ktv[0:1]\" 1 2 3;")), HasSubstr("scene.ma:2: a key's time has no value"));
  EXPECT_THAT(error_of(curve("\nsetAttr \".ktv[0:1]\" 1 2;")),
              HasSubstr("scene.ma:2: fewer values than the index range"));
  EXPECT_THAT(error_of(curve("\nsetAttr \".ktv[0:0]\" 1 2 3 4;")),
              HasSubstr("scene.ma:2: more values than the index range"));
  EXPECT_THAT(error_of(curve("\nsetAttr \".ktv[0]\" nan 2;")), HasSubstr("scene.ma:2: a value of a key is not finite"));
  EXPECT_THAT(error_of(curve("\nsetAttr \".ktv[0]\" 2 inf;")), HasSubstr("scene.ma:2: a key's value is not finite"));
  EXPECT_THAT(error_of(curve("\nsetAttr \".ktv[4000000000]\" 1 2;")),
              HasSubstr("scene.ma:2: a key's index is far beyond"));
  EXPECT_THAT(error_of(curve("\nsetAttr \".ktv[-1]\" 1 2;")), HasSubstr("a key's index"));
  EXPECT_THAT(error_of(curve("\nsetAttr \".ktv[0:1]\" 1 two;")), HasSubstr("scene.ma:2: 'two' stands where a number"));
}

TEST(MayaAscii, UnknownTangentsAndInfinitiesAreWarnedOf) {
  EXPECT_THAT(read(curve("setAttr \".tan\" 99;setAttr \".ktv[0]\" 1 2;")).warnings.all(), warns("unknown kind", 1));
  EXPECT_THAT(read(curve("setAttr \".pre\" 2;setAttr \".ktv[0]\" 1 2;")).warnings.all(), warns("unknown kind", 1));
  EXPECT_THAT(read(curve("setAttr \".roti\" 3;setAttr \".ktv[0]\" 1 2;", "animCurveTA")).warnings.all(),
              warns("quaternions", 1));
}

// --- connections ------------------------------------------------------------------------------------------------

TEST(MayaAscii, ACurveMovesWhatItIsConnectedTo) {
  for (const char* statement : {"connectAttr \"c.o\" \"ball.tx\";", "connectAttr -f \"c.output\" \"ball.translateX\";",
                                "connectAttr -l on \"c.o\" \"ball.t.tx\" -na;", "connectAttr \"c.o\" \"|ball.tx\";",
                                "connectAttr \":time1.o\" \"c.i\";connectAttr \"c.o\" \":ball.tx\";"}) {
    const Scene scene = clean(kBall + statement);
    expect_at(scene, "ball", 5, 5, 0, 0);
    EXPECT_TRUE(scene.evaluation.not_followed(scene.names.require("ball")).empty());
    EXPECT_THAT(scene.curves.key_times(scene.names.require("ball")), ElementsAre(0.0, 10.0));
  }
}

TEST(MayaAscii, ADisconnectedCurveMovesNothing) {
  const Scene scene = clean(kBall + "connectAttr \"c.o\" \"ball.tx\";disconnectAttr \"c.o\" \"ball.tx\";");
  EXPECT_FALSE(scene.curves.has_keys(scene.names.require("ball")));
}

TEST(MayaAscii, UnitConversionsAndPairBlendsAreFollowed) {
  const Scene scaled = clean(kBall +
                             "createNode unitConversion -n \"u\";setAttr \".cf\" 3;connectAttr \"c.o\" "
                             "\"u.i\";connectAttr \"u.o\" \"ball.tx\";");
  expect_at(scaled, "ball", 5, 15, 0, 0);
  const Scene blended = clean(kBall +
                              "addAttr -sn \"b\" -ln \"blendIt\" -dv 0.25 -at \"double\";"
                              "createNode pairBlend -n \"p\";setAttr \".itx1\" 1;setAttr \".w\" 0.5;connectAttr "
                              "\"c.o\" \"p.itx2\";connectAttr \"p.otx\" \"ball.tx\";");
  expect_at(blended, "ball", 5, 3, 0, 0);
}

TEST(MayaAscii, ThePairBlendsWeightMayComeFromAnAttributeOfTheFilesOwn) {
  const Scene scene = clean(
      "createNode transform -n \"ball\";addAttr -sn \"b\" -ln \"blendIt\" -dv 0.25 -at \"double\";"
      "createNode animCurveTL -n \"c\";setAttr \".tan\" 2;setAttr -s 2 \".ktv[0:1]\" 0 0 10 10;"
      "createNode pairBlend -n \"p\";connectAttr \"ball.blendIt\" \"p.w\";connectAttr \"c.o\" \"p.itx2\";connectAttr "
      "\"p.otx\" \"ball.tx\";");
  expect_at(scene, "ball", 5, 1.25, 0, 0);
}

TEST(MayaAscii, WhatCannotBeFollowedIsNamedOnceAKindAndMarkedOnTheObject) {
  const Scene scene = read(
      "createNode transform -n \"a\";createNode transform -n \"b\";createNode transform -n \"child\" -p "
      "\"a\";createNode transform -n \"free\";"
      "createNode parentConstraint -n \"pc\" -p \"a\";createNode expression -n \"e\";createNode animCurveUA -n "
      "\"dk\";createNode animLayerThing -n \"al\";"
      "connectAttr \"pc.ctx\" \"a.tx\";connectAttr \"pc.cty\" \"a.ty\";connectAttr \"e.out[0]\" \"a.rx\";connectAttr "
      "\"e.out[1]\" \"b.rx\";"
      "connectAttr \"dk.o\" \"b.rz\";connectAttr \"al.o\" \"b.t\";");
  EXPECT_THAT(scene.warnings.all(), warns("the constraint 'parentConstraint' is not evaluated", 1));
  EXPECT_THAT(scene.warnings.all(), warns("'expression' is not evaluated", 2));
  EXPECT_THAT(scene.warnings.all(), warns("the driven key 'animCurveUA' is not evaluated", 1));
  EXPECT_THAT(scene.warnings.all(), warns("'animLayerThing' is not evaluated", 1));
  for (const char* name : {"a", "b", "child"})
    EXPECT_FALSE(scene.evaluation.not_followed(scene.names.require(name)).empty()) << name;
  EXPECT_TRUE(scene.evaluation.not_followed(scene.names.require("free")).empty());
}

TEST(MayaAscii, ACurveOverSomethingElseThanTimeIsMarked) {
  const Scene scene =
      read(kBall + "createNode timeWarp -n \"w\";connectAttr \"w.o\" \"c.i\";connectAttr \"c.o\" \"ball.tx\";");
  EXPECT_THAT(scene.warnings.all(), warns("'timeWarp' is not evaluated", 1));
  EXPECT_FALSE(scene.evaluation.not_followed(scene.names.require("ball")).empty());
}

TEST(MayaAscii, JointsUnderAnIkHandleAreMarked) {
  const Scene scene = read(
      "createNode joint -n \"hip\";createNode joint -n \"knee\" -p \"hip\";createNode ikHandle -n \"ik\";connectAttr "
      "\"hip.msg\" \"ik.hsj\";");
  EXPECT_THAT(scene.warnings.all(), warns("'ikHandle' is not evaluated", 1));
  EXPECT_FALSE(scene.evaluation.not_followed(scene.names.require("knee")).empty());
}

TEST(MayaAscii, MissingReferencesAreNamedWithWhatTheyWouldMove) {
  const Scene scene = read(
      "file -rdi 1 -ns \"rig\" -rfn \"rigRN\" -typ \"mayaAscii\" \"scenes/rig.ma\";"
      "file -r -ns \"rig\" -dr 1 -rfn \"rigRN\" -typ \"mayaAscii\" \"scenes/rig.ma\";createNode reference -n \"rigRN\";"
      "setAttr -s 2 \".phl\";setAttr \".ed\" -type \"dataReferenceEdits\" \"rigRN\" \"rigRN\" 0 \"rigRN\" 2 5 4 "
      "\"rigRN\" \"rig:a.tx\";" +
      kBall +
      "createNode animCurveTL -n \"d\";connectAttr \"c.o\" \"rigRN.phl[1]\";connectAttr \"d.o\" \"rigRN.phl[2]\";"
      "connectAttr \"rigRN.phl[3]\" \"ball.ty\";connectAttr \"rig:b.tz\" \"ball.tz\";");
  EXPECT_THAT(scene.warnings.all(), warns("the reference 'rigRN' to 'scenes/rig.ma' is not opened", 1));
  EXPECT_THAT(scene.warnings.all(), warns("moves only something in the missing reference 'rigRN'", 2));
  EXPECT_THAT(scene.warnings.all(), warns("node that is not in the file", 1));
  EXPECT_EQ(scene.evaluation.not_followed(scene.names.require("ball")).size(), 2u);
}

TEST(MayaAscii, AnOffsetParentMatrixMayBeConnected) {
  const Scene scene = clean(
      "createNode transform -n \"a\";setAttr \".tx\" 3;createNode transform -n \"b\";setAttr \".ty\" 1;connectAttr "
      "\"a.wm\" \"b.opm\";"
      "createNode transform -n \"c\";connectAttr \"a.worldMatrix[0]\" \"c.offsetParentMatrix\";");
  expect_at(scene, "b", 1, 3, 1, 0);
  expect_at(scene, "c", 1, 3, 0, 0);
}

}  // namespace
}  // namespace vantorelix::standalone
