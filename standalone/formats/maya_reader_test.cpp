#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <string>

#include "standalone/formats/reader.h"
#include "standalone/formats/text_input.h"
#include "standalone/scene/evaluator.h"

namespace vantorelix::standalone {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr double kDegree = std::numbers::pi / 180.0;

Scene read(const std::string& text) { return read_maya_ascii(text, "scene.ma"); }

std::string error_of(const std::string& text) {
  try {
    read(text);
  } catch (const FormatError& error) {
    return error.what();
  }
  return "no error";
}

// A scene that must hold nothing to warn of.
Scene clean(const std::string& text) {
  Scene scene = read(text);
  for (const Warning& warning : scene.warnings()) ADD_FAILURE() << warning.kind;
  return scene;
}

host::Vector place(const Scene& scene, const std::string& name, double frame = 1.0) {
  return scene.world_matrix(scene.require(name), frame).translation();
}

void expect_at(const Scene& scene, const std::string& name, double frame, double x, double y, double z) {
  const host::Vector p = place(scene, name, frame);
  EXPECT_NEAR(p.x, x, 1e-12) << name;
  EXPECT_NEAR(p.y, y, 1e-12) << name;
  EXPECT_NEAR(p.z, z, 1e-12) << name;
}

auto warns(const std::string& part, std::size_t count) {
  return Contains(testing::AllOf(Field(&Warning::kind, HasSubstr(part)), Field(&Warning::count, count)));
}

// --- statements -------------------------------------------------------------------------------------------------

TEST(MayaAscii, CommentsAndLineEndsMayStandAnywhere) {
  const Scene scene = clean(
      "//Maya ASCII 2020 scene\r\n/* createNode transform -n \"no\"; */\rcreateNode // why not\n "
      "transform\n\t-n\r\n\"a\" ;;\n"
      "setAttr \".t\" -type \"double3\" 1 /* two */ 2\n\t3;// the end");
  expect_at(scene, "a", 1, 1, 2, 3);
  EXPECT_EQ(scene.find("no"), kNoNode);
}

TEST(MayaAscii, StringsKeepWhatLooksLikeSyntax) {
  const Scene scene =
      clean("fileInfo \"a\" \"; createNode transform -n \\\"no\\\"; // \\\\\";\ncreateNode transform -n \"a\";");
  EXPECT_EQ(scene.find("no"), kNoNode);
  EXPECT_NE(scene.find("a"), kNoNode);
}

TEST(MayaAscii, ACutOffFileIsAnErrorThatNamesWhereTheStatementBegan) {
  EXPECT_EQ(error_of("createNode transform -n \"a\";\n\nsetAttr \".t\" -type\n \"double3\" 1 2"),
            "scene.ma:3: the file ends inside this statement; it is cut off, copy or export it again");
  EXPECT_THAT(error_of("createNode transform;\nfileInfo \"abc"), HasSubstr("scene.ma:2: the string that begins here"));
  EXPECT_THAT(error_of("createNode transform;\n/* abc"), HasSubstr("scene.ma:2: the comment that begins here"));
}

TEST(MayaAscii, AFileThatIsNoSceneIsAnError) {
  EXPECT_THAT(error_of("FOR4....."), HasSubstr("scene.ma:1: this is a binary Maya scene under another name"));
  EXPECT_THAT(error_of("FOR8....."), HasSubstr("save it as Maya ASCII"));
  EXPECT_THAT(error_of(""), HasSubstr("no statement of a Maya ASCII scene"));
  EXPECT_THAT(error_of("int main() { return 0; }"), HasSubstr("scene.ma:1:"));
  EXPECT_THAT(error_of(std::string("\0\0\0;\0;", 6)), HasSubstr("no statement of a Maya ASCII scene"));
}

TEST(MayaAscii, WordsAndStringsAreBounded) {
  EXPECT_THAT(error_of("createNode " + std::string(70000, 'x')), HasSubstr("a word of more than 65536 bytes"));
  EXPECT_THAT(error_of("fileInfo \"" + std::string((16u << 20) + 1, 'x') + "\";"),
              HasSubstr("a string of more than 16 MB"));
}

TEST(MayaAscii, StatementsOfUnknownKindsAreCounted) {
  const Scene scene = read("createNode transform; foo -x 1; foo; bar \"a\";");
  EXPECT_THAT(scene.warnings(), warns("'foo' is not read", 2));
  EXPECT_THAT(scene.warnings(), warns("'bar' is not read", 1));
}

TEST(MayaAscii, KindsOfWarningsAreBounded) {
  std::string text = "createNode transform;";
  for (int i = 0; i < 1000; ++i) text += "foo" + std::to_string(i) + ";";
  const Scene scene = read(text);
  EXPECT_LE(scene.warnings().size(), 201u);
  EXPECT_THAT(scene.warnings(), warns("yet another kind", 800));
}

// --- units ------------------------------------------------------------------------------------------------------

TEST(MayaAscii, WithoutUnitsAFileIsInCentimetresDegreesAndFilmFrames) {
  const Scene scene = clean("createNode transform;");
  EXPECT_EQ(scene.frames_per_second(), 24.0);
  EXPECT_EQ(scene.linear_unit(), "cm");
}

TEST(MayaAscii, TimeUnitsAreRates) {
  const auto rate = [](const std::string& unit) {
    return clean("currentUnit -l cm -a deg -t " + unit + ";").frames_per_second();
  };
  EXPECT_EQ(rate("game"), 15.0);
  EXPECT_EQ(rate("film"), 24.0);
  EXPECT_EQ(rate("pal"), 25.0);
  EXPECT_EQ(rate("ntsc"), 30.0);
  EXPECT_EQ(rate("show"), 48.0);
  EXPECT_EQ(rate("palf"), 50.0);
  EXPECT_EQ(rate("ntscf"), 60.0);
  EXPECT_EQ(rate("120fps"), 120.0);
  EXPECT_EQ(rate("23.976fps"), 24000.0 / 1001.0);
  EXPECT_EQ(rate("29.97fps"), 30000.0 / 1001.0);
  EXPECT_EQ(rate("\"59.94fps\""), 60000.0 / 1001.0);
  EXPECT_EQ(rate("millisec"), 1000.0);
  EXPECT_EQ(rate("sec"), 1.0);
  EXPECT_EQ(rate("min"), 1.0 / 60.0);
  EXPECT_EQ(rate("hour"), 1.0 / 3600.0);
  EXPECT_EQ(clean("currentUnit -time pal;").frames_per_second(), 25.0);
}

TEST(MayaAscii, UnknownUnitsAreAnError) {
  EXPECT_THAT(error_of("currentUnit -t fortnight;"), HasSubstr("'fortnight' is no time unit"));
  EXPECT_THAT(error_of("currentUnit -t 0fps;"), HasSubstr("'0fps' is no time unit"));
  EXPECT_THAT(error_of("currentUnit -t fps;"), HasSubstr("'fps' is no time unit"));
  EXPECT_THAT(error_of("currentUnit -l cubit;"), HasSubstr("'cubit' is no linear unit"));
  EXPECT_THAT(error_of("currentUnit -a gon;"), HasSubstr("'gon' is no angular unit"));
}

TEST(MayaAscii, LengthsComeOutInTheUnitOfTheFile) {
  const Scene scene = clean(
      "currentUnit -linear meter -a degree -t film;createNode transform -n \"a\";setAttr \".t\" 1 2 3;"
      "setAttr \".opm\" -type \"matrix\" 1 0 0 0 0 1 0 0 0 0 1 0 100 0 0 1;");
  EXPECT_EQ(scene.linear_unit(), "m");
  expect_at(scene, "a", 1, 2, 2, 3);  // matrices are in centimetres always
}

TEST(MayaAscii, AnglesAreReadInTheUnitOfTheFile) {
  const std::string node = "createNode transform -n \"a\";setAttr \".rz\" ";
  EXPECT_DOUBLE_EQ(clean(node + "90;").channel(1, Channel::rotateZ), 90.0 * kDegree);
  const Scene scene = clean("currentUnit -angle radian;" + node + "1.5;");
  EXPECT_EQ(scene.channel(scene.require("a"), Channel::rotateZ), 1.5);
}

// --- nodes ------------------------------------------------------------------------------------------------------

TEST(MayaAscii, NodesGoUnderTheirParentsWhateverNamesTheyShare) {
  const Scene scene = clean(
      "createNode transform -n \"a\";createNode transform -n \"x\" -p \"a\";createNode transform -n \"b\";"
      "createNode transform -n \"x\" -p \"b\";createNode transform -n \"y\" -p \"|b|x\";"
      "setAttr \"|a|x.tx\" 1;setAttr \"b|x.ty\" 2;setAttr \"y.tz\" 3;");
  expect_at(scene, "|a|x", 1, 1, 0, 0);
  expect_at(scene, "|b|x|y", 1, 0, 2, 3);
}

TEST(MayaAscii, NamespacesAreGoodNames) {
  const Scene scene = clean("createNode transform -n \"rig:hand:ctl\";setAttr \":rig:hand:ctl.tx\" 4;");
  EXPECT_EQ(scene.short_name(scene.require("rig:hand:ctl")), "rig:hand:ctl");
  expect_at(scene, "rig:hand:ctl", 1, 4, 0, 0);
}

TEST(MayaAscii, ASharedNodeIsMadeOnce) {
  const Scene scene = clean(
      "createNode transform -s -n \"persp\";createNode camera -s -n \"perspShape\" -p \"persp\";"
      "createNode transform -s -n \"persp\";setAttr \".tx\" 5;");
  EXPECT_EQ(scene.nodes_of_type("transform").size(), 1u);
  expect_at(scene, "persp", 1, 5, 0, 0);
}

TEST(MayaAscii, BytesOfOtherCodePagesStayInNames) {
  const Scene scene = read("createNode transform -n \"H\xFCgel\x83n\";");
  EXPECT_EQ(name_in_file(scene, scene.children(kWorld).at(0)), "H\xFCgel\x83n");
}

TEST(MayaAscii, SelectSaysWhichNodeIsMeant) {
  const Scene scene = clean(
      "createNode transform -n \"a\";createNode transform -n \"b\";select -ne \"a\";setAttr \".tx\" 1;"
      "select -ne :time1;setAttr \".o\" 7;setAttr \".tx\" 9;select -ne :defaultRenderGlobals;setAttr \".tx\" 9;");
  expect_at(scene, "a", 1, 1, 0, 0);
  expect_at(scene, "b", 1, 0, 0, 0);
  EXPECT_EQ(scene.current_time(), 7.0);
}

TEST(MayaAscii, ParentMovesANodeAndKeepsItsLocalValues) {
  const Scene scene = clean(
      "createNode transform -n \"a\";setAttr \".tx\" 1;createNode transform -n \"b\";setAttr \".ty\" 1;"
      "createNode transform -n \"c\" -p \"a\";createNode transform -n \"d\" -p \"a\";"
      "parent -s -nc -r \"b\" \"c\" \"|a\";parent -w \"|a|d\";");
  expect_at(scene, "|a|b", 1, 1, 1, 0);
  EXPECT_NE(scene.find("|d"), kNoNode);
}

TEST(MayaAscii, AFurtherInstanceIsWarnedOf) {
  const Scene scene =
      read("createNode transform -n \"a\";createNode transform -n \"b\";parent -s -nc -r -add \"a\" \"b\";");
  EXPECT_THAT(scene.warnings(), warns("instance", 1));
  EXPECT_EQ(scene.parent(scene.require("a")), kWorld);
}

TEST(MayaAscii, ALockedNodeCannotBeDeleted) {
  Scene scene = clean(
      "createNode transform -n \"a\";lockNode -l 1 ;createNode transform -n \"b\";lockNode -l on \"b\";lockNode -l off "
      "\"b\";");
  EXPECT_ANY_THROW(scene.delete_node(scene.require("a")));
  EXPECT_NO_THROW(scene.delete_node(scene.require("b")));
}

TEST(MayaAscii, ANodeWhoseParentIsMissingIsMarked) {
  const Scene scene = read(
      "createNode transform -n \"a\" -p \"rig:top\";createNode transform -n \"b\" -p \"a\";createNode transform -n "
      "\"c\";");
  EXPECT_THAT(scene.warnings(), warns("parent is not in the file", 1));
  EXPECT_FALSE(scene.not_followed(scene.require("a")).empty());
  EXPECT_FALSE(scene.not_followed(scene.require("b")).empty());
  EXPECT_TRUE(scene.not_followed(scene.require("c")).empty());
}

TEST(MayaAscii, NodesOfPluginTypesKeepTheHierarchyWhole) {
  const Scene scene = read(
      "createNode hikFKJoint -n \"a\";createNode transform -n \"top\";createNode fancyTransform -n \"b\" -p "
      "\"top\";setAttr \".tx\" 2;"
      "createNode fancyGeo -n \"bShape\" -p \"b\";createNode transform -n \"c\" -p \"b\";");
  expect_at(scene, "|top|b|c", 1, 2, 0, 0);
  EXPECT_TRUE(scene.is_shape(scene.require("bShape")));
  EXPECT_THAT(scene.warnings(), warns("'fancyTransform' is not known", 1));
}

TEST(MayaAscii, NodesInsideEachOtherAreBounded) {
  std::string text = "createNode transform -n \"n0\";";
  for (int i = 1; i < 3000; ++i) {
    text += "createNode transform -n \"n" + std::to_string(i) + "\" -p \"n" + std::to_string(i - 1) + "\";";
  }
  EXPECT_THAT(error_of(text), HasSubstr("more than 2000 nodes inside each other"));
}

// --- setAttr ----------------------------------------------------------------------------------------------------

TEST(MayaAscii, ValuesAreReadInEveryForm) {
  for (const char* statement :
       {"setAttr \".t\" -type \"double3\" 1 2 3 ;", "setAttr \".translate\" -type \"float3\" 1 2 3;",
        "setAttr \".t\" 1 2 3;", "setAttr -av -k off \".t\" -type \"double3\" 1 2 3;", "setAttr \"a.t\" 1 2 3;",
        "setAttr \".tx\" 1;setAttr -l off \".ty\" 2;setAttr -keyable on -cb on \".translateZ\" 3;",
        "setAttr \".t.tx\" 1;setAttr \"a.translate.translateY\" 2;setAttr -ca off -c \".tz\" 3;"}) {
    expect_at(clean(std::string("createNode transform -n \"a\";") + statement), "a", 1, 1, 2, 3);
  }
}

TEST(MayaAscii, EveryChannelHasItsLongAndItsShortName) {
  const Scene scene = clean(
      "createNode joint -n \"a\";setAttr \".r\" 1 2 3;setAttr \".s\" 4 5 6;setAttr \".sh\" 7 8 9;setAttr \".ra\" 10 11 "
      "12;"
      "setAttr \".jo\" 13 14 15;setAttr \".rp\" 16 17 18;setAttr \".rpt\" 19 20 21;setAttr \".sp\" 22 23 24;"
      "setAttr \".spt\" 25 26 27;setAttr \".is\" 28 29 30;setAttr \".ro\" 3;setAttr \".ssc\" no;setAttr \".it\" off;");
  const NodeId a = scene.require("a");
  EXPECT_DOUBLE_EQ(scene.channel(a, Channel::rotateY), 2 * kDegree);
  EXPECT_EQ(scene.channel(a, Channel::scaleZ), 6.0);
  EXPECT_EQ(scene.channel(a, Channel::shearXY), 7.0);
  EXPECT_EQ(scene.channel(a, Channel::shearYZ), 9.0);
  EXPECT_DOUBLE_EQ(scene.channel(a, Channel::rotateAxisX), 10 * kDegree);
  EXPECT_DOUBLE_EQ(scene.channel(a, Channel::jointOrientZ), 15 * kDegree);
  EXPECT_EQ(scene.channel(a, Channel::rotatePivotX), 16.0);
  EXPECT_EQ(scene.channel(a, Channel::rotatePivotTranslateY), 20.0);
  EXPECT_EQ(scene.channel(a, Channel::scalePivotZ), 24.0);
  EXPECT_EQ(scene.channel(a, Channel::scalePivotTranslateX), 25.0);
  EXPECT_EQ(scene.channel(a, Channel::inverseScaleY), 29.0);
  EXPECT_EQ(scene.channel(a, Channel::rotateOrder), 3.0);
  EXPECT_EQ(scene.channel(a, Channel::segmentScaleCompensate), 0.0);
  EXPECT_EQ(scene.channel(a, Channel::inheritsTransform), 0.0);
  const Scene full = clean(
      "createNode joint -n \"a\";setAttr \".shearXZ\" 8;setAttr \".rotateAxisY\" 11;setAttr \".jointOrientX\" 13;"
      "setAttr \".rotatePivotTranslateZ\" 21;setAttr \".segmentScaleCompensate\" 0;setAttr \".rotateOrder\" 5;");
  const NodeId b = full.require("a");
  EXPECT_EQ(full.channel(b, Channel::shearXZ), 8.0);
  EXPECT_DOUBLE_EQ(full.channel(b, Channel::rotateAxisY), 11 * kDegree);
  EXPECT_DOUBLE_EQ(full.channel(b, Channel::jointOrientX), 13 * kDegree);
  EXPECT_EQ(full.channel(b, Channel::rotatePivotTranslateZ), 21.0);
  EXPECT_EQ(full.channel(b, Channel::segmentScaleCompensate), 0.0);
  EXPECT_EQ(full.channel(b, Channel::rotateOrder), 5.0);
}

TEST(MayaAscii, LockedAttributesAreLockedAndHaveTheirValue) {
  Scene scene = clean(
      "createNode transform -n \"a\";setAttr -l on \".tx\" 4;setAttr -l on -k off \".ty\";setAttr -lock true \".sx\" "
      "2;setAttr -l off \".sx\";");
  const NodeId a = scene.require("a");
  expect_at(scene, "a", 1, 4, 0, 0);
  EXPECT_ANY_THROW(scene.set_attribute(a, "translateX", host::Value(1.0)));
  EXPECT_ANY_THROW(scene.set_attribute(a, "translateY", host::Value(1.0)));
  EXPECT_NO_THROW(scene.set_attribute(a, "scaleX", host::Value(1.0)));
}

TEST(MayaAscii, BadValuesAreAnErrorOrLeftOutWithAWarning) {
  EXPECT_THAT(error_of("createNode transform;\nsetAttr \".t\" 1 2;"), HasSubstr("scene.ma:2: fewer values"));
  EXPECT_THAT(error_of("createNode transform;\nsetAttr \".tx\" one;"),
              HasSubstr("scene.ma:2: 'one' stands where a number"));
  EXPECT_THAT(error_of("createNode transform;\nsetAttr \".opm\" 1 2;"), HasSubstr("a matrix has 16 values"));
  EXPECT_THAT(read("createNode transform;setAttr \".tx\" nan;").warnings(), warns("not finite", 1));
  EXPECT_THAT(read("createNode transform;setAttr \".ro\" 6;").warnings(), warns("rotate order", 1));
  EXPECT_THAT(read("createNode transform;setAttr \".ro\" -1;").warnings(), warns("rotate order", 1));
}

TEST(MayaAscii, AttributesThatMoveNothingArePassedOver) {
  clean(
      "createNode transform -n \"a\";setAttr \".v\" no;createNode mesh -n \"aShape\" -p \"a\";"
      "setAttr -s 8 \".vt[0:7]\" -0.5 -0.5 0.5 nan(ind) 1 2;setAttr \".ed\" -type \"dataPolyComponent\" Index_Data "
      "Edge 0 ;"
      "createNode lambert -n \"m\";setAttr \".c\" -type \"float3\" 1 0 0 ;connectAttr \"m.oc\" \"sg.ss\";"
      "connectAttr \"aShape.iog\" \":initialShadingGroup.dsm\" -na;relationship \"link\" \":lightLinker1\" \"a\" "
      "\"b\";");
}

TEST(MayaAscii, AnAttributeOfTheFilesOwnIsReadUnderBothItsNames) {
  const Scene scene = clean(
      "createNode transform -n \"a\";addAttr -ci true -k true -sn \"bl\" -ln \"blend\" -dv 0.25 -smn 0 -smx 1 -at "
      "\"double\";"
      "addAttr -ci true -sn \"n\" -ln \"notes\" -dt \"string\";addAttr -ln \"plain\" -at \"long\";"
      "createNode transform -n \"b\";addAttr -sn \"bl\" -ln \"blend\" -dv 0.25 -at \"double\";setAttr -k on \".bl\" "
      "0.75;");
  EXPECT_EQ(scene.attribute(scene.require("a"), "blend").to_float(), 0.25);
  EXPECT_EQ(scene.attribute(scene.require("a"), "plain").to_float(), 0.0);
  EXPECT_EQ(scene.attribute(scene.require("b"), "blend").to_float(), 0.75);
}

// --- curves -----------------------------------------------------------------------------------------------------

std::string curve(const std::string& values, const std::string& type = "animCurveTL") {
  return "createNode " + type + " -n \"c\";" + values;
}

const AnimCurve& only_curve(const Scene& scene) { return scene.curve(scene.require("c")); }

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
  EXPECT_THAT(read(curve("setAttr \".tan\" 99;setAttr \".ktv[0]\" 1 2;")).warnings(), warns("unknown kind", 1));
  EXPECT_THAT(read(curve("setAttr \".pre\" 2;setAttr \".ktv[0]\" 1 2;")).warnings(), warns("unknown kind", 1));
  EXPECT_THAT(read(curve("setAttr \".roti\" 3;setAttr \".ktv[0]\" 1 2;", "animCurveTA")).warnings(),
              warns("quaternions", 1));
}

// --- connections ------------------------------------------------------------------------------------------------

const std::string kBall =
    "createNode transform -n \"ball\";createNode animCurveTL -n \"c\";setAttr \".tan\" 2;setAttr -s 2 \".ktv[0:1]\" 0 "
    "0 10 10;";

TEST(MayaAscii, ACurveMovesWhatItIsConnectedTo) {
  for (const char* statement : {"connectAttr \"c.o\" \"ball.tx\";", "connectAttr -f \"c.output\" \"ball.translateX\";",
                                "connectAttr -l on \"c.o\" \"ball.t.tx\" -na;", "connectAttr \"c.o\" \"|ball.tx\";",
                                "connectAttr \":time1.o\" \"c.i\";connectAttr \"c.o\" \":ball.tx\";"}) {
    const Scene scene = clean(kBall + statement);
    expect_at(scene, "ball", 5, 5, 0, 0);
    EXPECT_TRUE(scene.not_followed(scene.require("ball")).empty());
    EXPECT_THAT(scene.key_times(scene.require("ball")), ElementsAre(0.0, 10.0));
  }
}

TEST(MayaAscii, ADisconnectedCurveMovesNothing) {
  const Scene scene = clean(kBall + "connectAttr \"c.o\" \"ball.tx\";disconnectAttr \"c.o\" \"ball.tx\";");
  EXPECT_FALSE(scene.has_keys(scene.require("ball")));
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
  EXPECT_THAT(scene.warnings(), warns("the constraint 'parentConstraint' is not evaluated", 1));
  EXPECT_THAT(scene.warnings(), warns("'expression' is not evaluated", 2));
  EXPECT_THAT(scene.warnings(), warns("the driven key 'animCurveUA' is not evaluated", 1));
  EXPECT_THAT(scene.warnings(), warns("'animLayerThing' is not evaluated", 1));
  for (const char* name : {"a", "b", "child"}) EXPECT_FALSE(scene.not_followed(scene.require(name)).empty()) << name;
  EXPECT_TRUE(scene.not_followed(scene.require("free")).empty());
}

TEST(MayaAscii, ACurveOverSomethingElseThanTimeIsMarked) {
  const Scene scene =
      read(kBall + "createNode timeWarp -n \"w\";connectAttr \"w.o\" \"c.i\";connectAttr \"c.o\" \"ball.tx\";");
  EXPECT_THAT(scene.warnings(), warns("'timeWarp' is not evaluated", 1));
  EXPECT_FALSE(scene.not_followed(scene.require("ball")).empty());
}

TEST(MayaAscii, JointsUnderAnIkHandleAreMarked) {
  const Scene scene = read(
      "createNode joint -n \"hip\";createNode joint -n \"knee\" -p \"hip\";createNode ikHandle -n \"ik\";connectAttr "
      "\"hip.msg\" \"ik.hsj\";");
  EXPECT_THAT(scene.warnings(), warns("'ikHandle' is not evaluated", 1));
  EXPECT_FALSE(scene.not_followed(scene.require("knee")).empty());
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
  EXPECT_THAT(scene.warnings(), warns("the reference 'rigRN' to 'scenes/rig.ma' is not opened", 1));
  EXPECT_THAT(scene.warnings(), warns("missing reference 'rigRN' alone", 2));
  EXPECT_THAT(scene.warnings(), warns("node that is not in the file", 1));
  EXPECT_EQ(scene.not_followed(scene.require("ball")).size(), 2u);
}

TEST(MayaAscii, AnOffsetParentMatrixMayBeConnected) {
  const Scene scene = clean(
      "createNode transform -n \"a\";setAttr \".tx\" 3;createNode transform -n \"b\";setAttr \".ty\" 1;connectAttr "
      "\"a.wm\" \"b.opm\";"
      "createNode transform -n \"c\";connectAttr \"a.worldMatrix[0]\" \"c.offsetParentMatrix\";");
  expect_at(scene, "b", 1, 3, 1, 0);
  expect_at(scene, "c", 1, 3, 0, 0);
}

// --- range and shapes -------------------------------------------------------------------------------------------

TEST(MayaAscii, ThePlaybackRangeIsThatOfTheConfigurationNode) {
  const Scene scene = clean(
      "createNode script -n \"uiConfigurationScriptNode\";setAttr \".b\" -type \"string\" \"playbackOptions -min 7 "
      "-max 8\";"
      "createNode script -n \"sceneConfigurationScriptNode\";"
      "setAttr \".b\" -type \"string\" \"playbackOptions -min -3.5 -max 120 -ast 1 -aet 200 \";setAttr \".st\" 6;" +
      kBall);
  EXPECT_EQ(scene.playback_min(), -3.5);
  EXPECT_EQ(scene.playback_max(), 120.0);
}

TEST(MayaAscii, AScriptMayBeWrittenInPieces) {
  const Scene scene = clean(
      "createNode script -n \"sceneConfigurationScriptNode\";setAttr \".b\" -type \"string\" (\n\"// "
      "hello\\nplaybackOptions -m\"\n\t+ \"in 2 -max 3\");");
  EXPECT_EQ(scene.playback_min(), 2.0);
  EXPECT_EQ(scene.playback_max(), 3.0);
}

TEST(MayaAscii, WithoutAConfigurationNodeTheKeysAreTheRange) {
  EXPECT_EQ(clean(kBall).playback_min(), 0.0);
  EXPECT_EQ(clean(kBall).playback_max(), 10.0);
  const Scene broken = clean(
      "createNode script -n \"sceneConfigurationScriptNode\";setAttr \".b\" -type \"string\" \"playbackOptions -min 9 "
      "-max 3\";" +
      kBall);
  EXPECT_EQ(broken.playback_max(), 10.0);
}

TEST(MayaAscii, ACurveShapeHasItsPoints) {
  const Scene scene = clean(
      "createNode transform -n \"curve1\";createNode nurbsCurve -n \"curveShape1\" -p \"curve1\";setAttr -k off \".v\";"
      "setAttr \".cc\" -type \"nurbsCurve\" \n\t3 2 0 no 3\n\t7 0 0 0 1 2 2 2\n\t5\n\t1 2 3\n\t4 5 6\n\t7 8 9\n\t10 11 "
      "12\n\t13 14 15.5\n\t;");
  const NodeId shape = scene.require("curveShape1");
  EXPECT_EQ(scene.curve_degree(shape), 3);
  ASSERT_EQ(scene.curve_points(shape).size(), 5u);
  EXPECT_EQ(scene.curve_points(shape)[4], (host::Vector{13, 14, 15.5}));
  EXPECT_THAT(error_of("createNode transform -n \"a\";createNode nurbsCurve -n \"s\" -p \"a\";setAttr \".cc\" -type "
                       "\"nurbsCurve\" 1 1 0 no 3 2 0 1 99999999999 1 2 3;"),
              HasSubstr("fewer points than it announces"));
}

// --- bounds -----------------------------------------------------------------------------------------------------

TEST(MayaAscii, NothingChangesAcrossTheEdgesOfTheWindow) {
  const std::string text = kBall + "connectAttr \"c.o\" \"ball.tx\";// done\n";
  for (std::size_t shift = 0; shift < 520; ++shift) {
    const std::string moved = std::string(shift, ' ') + text;
    MemorySource source(moved, "scene.ma");
    expect_at(read_maya_ascii(source, {}, 1), "ball", 5, 5, 0, 0);
  }
}

TEST(MayaAscii, GoingToAndFroBetweenLongCurvesTakesNoLongerThanReadingThem) {
  std::string text, keys;
  for (int i = 0; i < 20000; ++i) keys += " " + std::to_string(i) + " 1";
  for (const char* name : {"c", "d"})
    text += std::string("createNode animCurveTL -n \"") + name + "\";setAttr \".ktv[0:19999]\"" + keys + ";";
  for (int i = 0; i < 20000; ++i) {
    text += "setAttr \"c.ktv[" + std::to_string(i) + "]\" " + std::to_string(i) + " 2;setAttr \"d.kit[" +
            std::to_string(i) + "]\" 3;";
  }
  // Quadratic, this would be 800 million keys.
  const Scene scene = clean(text);
  EXPECT_EQ(only_curve(scene).keys()[19999].value, 2.0);
  EXPECT_EQ(scene.curve(scene.require("d")).keys()[19999].in, Tangent::flat);
}

TEST(ReadScene, NamesWhatItReadsWhenTheExtensionIsAnother) {
  try {
    read_scene("clip.xyz");
    FAIL();
  } catch (const FormatError& error) {
    EXPECT_THAT(error.what(), HasSubstr("clip.xyz: scene files of this kind are not read; give a BVH clip (.bvh)"));
  }
  EXPECT_THROW(read_scene("/nowhere/at/all.MA"), FormatError);
}

TEST(ReadScene, ReadsTheExamplesByTheirExtension) {
  for (const char* name : {"bounce.ma", "arm.ma", "prop.ma", "walk.bvh"}) {
    const Scene scene = read_scene(std::filesystem::path(VANTORELIX_SOURCE_DIR) / "examples" / name);
    EXPECT_THAT(scene.warnings(), IsEmpty()) << name;
    EXPECT_GT(scene.playback_max(), scene.playback_min()) << name;
  }
}

}  // namespace
}  // namespace vantorelix::standalone
