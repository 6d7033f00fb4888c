#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "standalone/formats/maya/maya_test_scene.h"
#include "standalone/formats/text_input.h"

namespace vantorelix::standalone {
namespace {

using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

// --- statements -------------------------------------------------------------------------------------------------

TEST(MayaAscii, CommentsAndLineEndsMayStandAnywhere) {
  const Scene scene = clean(
      "//Maya ASCII 2020 scene\r\n/* createNode transform -n \"no\"; */\rcreateNode // why not\n "
      "transform\n\t-n\r\n\"a\" ;;\n"
      "setAttr \".t\" -type \"double3\" 1 /* two */ 2\n\t3;// End of a.ma");
  expect_at(scene, "a", 1, 1, 2, 3);
  EXPECT_EQ(scene.names.find("no"), kNoNode);
}

TEST(MayaAscii, StringsKeepWhatLooksLikeSyntax) {
  const Scene scene =
      clean("fileInfo \"a\" \"; createNode transform -n \\\"no\\\"; // \\\\\";\ncreateNode transform -n \"a\";");
  EXPECT_EQ(scene.names.find("no"), kNoNode);
  EXPECT_NE(scene.names.find("a"), kNoNode);
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
  EXPECT_THAT(scene.warnings.all(), warns("'foo' is not read", 2));
  EXPECT_THAT(scene.warnings.all(), warns("'bar' is not read", 1));
}

TEST(MayaAscii, KindsOfWarningsAreBounded) {
  std::string text = "createNode transform;";
  for (int i = 0; i < 1000; ++i) text += "foo" + std::to_string(i) + ";";
  const Scene scene = read(text);
  EXPECT_LE(scene.warnings.all().size(), 201u);
  EXPECT_THAT(scene.warnings.all(), warns("yet another kind", 800));
}

// --- units ------------------------------------------------------------------------------------------------------

TEST(MayaAscii, WithoutUnitsAFileIsInCentimetresDegreesAndFilmFrames) {
  const Scene scene = clean("createNode transform;");
  EXPECT_EQ(scene.settings.frames_per_second(), 24.0);
  EXPECT_EQ(scene.settings.linear_unit(), "cm");
}

TEST(MayaAscii, TimeUnitsAreRates) {
  const auto rate = [](const std::string& unit) {
    return clean("currentUnit -l cm -a deg -t " + unit + ";").settings.frames_per_second();
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
  EXPECT_EQ(clean("currentUnit -time pal;").settings.frames_per_second(), 25.0);
}

TEST(MayaAscii, UnknownUnitsAreAnError) {
  EXPECT_THAT(error_of("currentUnit -t fortnight;"), HasSubstr("'fortnight' is not a time unit"));
  EXPECT_THAT(error_of("currentUnit -t 0fps;"), HasSubstr("'0fps' is not a time unit"));
  EXPECT_THAT(error_of("currentUnit -t fps;"), HasSubstr("'fps' is not a time unit"));
  EXPECT_THAT(error_of("currentUnit -l cubit;"), HasSubstr("'cubit' is not a linear unit"));
  EXPECT_THAT(error_of("currentUnit -a gon;"), HasSubstr("'gon' is not an angular unit"));
}

TEST(MayaAscii, LengthsComeOutInTheUnitOfTheFile) {
  const Scene scene = clean(
      "currentUnit -linear meter -a degree -t film;createNode transform -n \"a\";setAttr \".t\" 1 2 3;"
      "setAttr \".opm\" -type \"matrix\" 1 0 0 0 0 1 0 0 0 0 1 0 100 0 0 1;");
  EXPECT_EQ(scene.settings.linear_unit(), "m");
  expect_at(scene, "a", 1, 2, 2, 3);  // matrices are in centimetres always
}

TEST(MayaAscii, AnglesAreReadInTheUnitOfTheFile) {
  const std::string node = "createNode transform -n \"a\";setAttr \".rz\" ";
  EXPECT_DOUBLE_EQ(clean(node + "90;").attributes.channel(1, Channel::rotateZ), 90.0 * kDegree);
  const Scene scene = clean("currentUnit -angle radian;" + node + "1.5;");
  EXPECT_EQ(scene.attributes.channel(scene.names.require("a"), Channel::rotateZ), 1.5);
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
  EXPECT_EQ(scene.names.short_name(scene.names.require("rig:hand:ctl")), "rig:hand:ctl");
  expect_at(scene, "rig:hand:ctl", 1, 4, 0, 0);
}

TEST(MayaAscii, ASharedNodeIsMadeOnce) {
  const Scene scene = clean(
      "createNode transform -s -n \"persp\";createNode camera -s -n \"perspShape\" -p \"persp\";"
      "createNode transform -s -n \"persp\";setAttr \".tx\" 5;");
  EXPECT_EQ(scene.nodes.of_type("transform").size(), 1u);
  expect_at(scene, "persp", 1, 5, 0, 0);
}

TEST(MayaAscii, BytesOfOtherCodePagesStayInNames) {
  const Scene scene = read("createNode transform -n \"H\xFCgel\x83n\";");
  EXPECT_EQ(name_in_file(scene, scene.nodes.children(kWorld).at(0)), "H\xFCgel\x83n");
}

TEST(MayaAscii, SelectSaysWhichNodeIsMeant) {
  const Scene scene = clean(
      "createNode transform -n \"a\";createNode transform -n \"b\";select -ne \"a\";setAttr \".tx\" 1;"
      "select -ne :time1;setAttr \".o\" 7;setAttr \".tx\" 9;select -ne :defaultRenderGlobals;setAttr \".tx\" 9;");
  expect_at(scene, "a", 1, 1, 0, 0);
  expect_at(scene, "b", 1, 0, 0, 0);
  EXPECT_EQ(scene.settings.current_time(), 7.0);
}

TEST(MayaAscii, ParentMovesANodeAndKeepsItsLocalValues) {
  const Scene scene = clean(
      "createNode transform -n \"a\";setAttr \".tx\" 1;createNode transform -n \"b\";setAttr \".ty\" 1;"
      "createNode transform -n \"c\" -p \"a\";createNode transform -n \"d\" -p \"a\";"
      "parent -s -nc -r \"b\" \"c\" \"|a\";parent -w \"|a|d\";");
  expect_at(scene, "|a|b", 1, 1, 1, 0);
  EXPECT_NE(scene.names.find("|d"), kNoNode);
}

TEST(MayaAscii, ALockedNodeCannotBeDeleted) {
  Scene scene = clean(
      "createNode transform -n \"a\";lockNode -l 1 ;createNode transform -n \"b\";lockNode -l on \"b\";lockNode -l off "
      "\"b\";");
  EXPECT_ANY_THROW(scene.nodes.remove(scene.names.require("a")));
  EXPECT_NO_THROW(scene.nodes.remove(scene.names.require("b")));
}

TEST(MayaAscii, ANodeWhoseParentIsMissingIsMarked) {
  const Scene scene = read(
      "createNode transform -n \"a\" -p \"rig:top\";createNode transform -n \"b\" -p \"a\";createNode transform -n "
      "\"c\";");
  EXPECT_THAT(scene.warnings.all(), warns("parent is not in the file", 1));
  EXPECT_FALSE(scene.evaluation.not_followed(scene.names.require("a")).empty());
  EXPECT_FALSE(scene.evaluation.not_followed(scene.names.require("b")).empty());
  EXPECT_TRUE(scene.evaluation.not_followed(scene.names.require("c")).empty());
}

TEST(MayaAscii, NodesOfPluginTypesKeepTheHierarchyWhole) {
  const Scene scene = read(
      "createNode hikFKJoint -n \"a\";createNode transform -n \"top\";createNode fancyTransform -n \"b\" -p "
      "\"top\";setAttr \".tx\" 2;"
      "createNode fancyGeo -n \"bShape\" -p \"b\";createNode transform -n \"c\" -p \"b\";");
  expect_at(scene, "|top|b|c", 1, 2, 0, 0);
  EXPECT_TRUE(scene.nodes.is_shape(scene.names.require("bShape")));
  EXPECT_THAT(scene.warnings.all(), warns("'fancyTransform' is not known", 1));
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
  const NodeId a = scene.names.require("a");
  EXPECT_DOUBLE_EQ(scene.attributes.channel(a, Channel::rotateY), 2 * kDegree);
  EXPECT_EQ(scene.attributes.channel(a, Channel::scaleZ), 6.0);
  EXPECT_EQ(scene.attributes.channel(a, Channel::shearXY), 7.0);
  EXPECT_EQ(scene.attributes.channel(a, Channel::shearYZ), 9.0);
  EXPECT_DOUBLE_EQ(scene.attributes.channel(a, Channel::rotateAxisX), 10 * kDegree);
  EXPECT_DOUBLE_EQ(scene.attributes.channel(a, Channel::jointOrientZ), 15 * kDegree);
  EXPECT_EQ(scene.attributes.channel(a, Channel::rotatePivotX), 16.0);
  EXPECT_EQ(scene.attributes.channel(a, Channel::rotatePivotTranslateY), 20.0);
  EXPECT_EQ(scene.attributes.channel(a, Channel::scalePivotZ), 24.0);
  EXPECT_EQ(scene.attributes.channel(a, Channel::scalePivotTranslateX), 25.0);
  EXPECT_EQ(scene.attributes.channel(a, Channel::inverseScaleY), 29.0);
  EXPECT_EQ(scene.attributes.channel(a, Channel::rotateOrder), 3.0);
  EXPECT_EQ(scene.attributes.channel(a, Channel::segmentScaleCompensate), 0.0);
  EXPECT_EQ(scene.attributes.channel(a, Channel::inheritsTransform), 0.0);
  const Scene full = clean(
      "createNode joint -n \"a\";setAttr \".shearXZ\" 8;setAttr \".rotateAxisY\" 11;setAttr \".jointOrientX\" 13;"
      "setAttr \".rotatePivotTranslateZ\" 21;setAttr \".segmentScaleCompensate\" 0;setAttr \".rotateOrder\" 5;");
  const NodeId b = full.names.require("a");
  EXPECT_EQ(full.attributes.channel(b, Channel::shearXZ), 8.0);
  EXPECT_DOUBLE_EQ(full.attributes.channel(b, Channel::rotateAxisY), 11 * kDegree);
  EXPECT_DOUBLE_EQ(full.attributes.channel(b, Channel::jointOrientX), 13 * kDegree);
  EXPECT_EQ(full.attributes.channel(b, Channel::rotatePivotTranslateZ), 21.0);
  EXPECT_EQ(full.attributes.channel(b, Channel::segmentScaleCompensate), 0.0);
  EXPECT_EQ(full.attributes.channel(b, Channel::rotateOrder), 5.0);
}

TEST(MayaAscii, LockedAttributesAreLockedAndHaveTheirValue) {
  Scene scene = clean(
      "createNode transform -n \"a\";setAttr -l on \".tx\" 4;setAttr -l on -k off \".ty\";setAttr -lock true \".sx\" "
      "2;setAttr -l off \".sx\";");
  const NodeId a = scene.names.require("a");
  expect_at(scene, "a", 1, 4, 0, 0);
  EXPECT_ANY_THROW(scene.attributes.set(a, "translateX", host::Value(1.0)));
  EXPECT_ANY_THROW(scene.attributes.set(a, "translateY", host::Value(1.0)));
  EXPECT_NO_THROW(scene.attributes.set(a, "scaleX", host::Value(1.0)));
}

TEST(MayaAscii, BadValuesAreAnErrorOrLeftOutWithAWarning) {
  EXPECT_THAT(error_of("createNode transform;\nsetAttr \".t\" 1 2;"), HasSubstr("scene.ma:2: fewer values"));
  EXPECT_THAT(error_of("createNode transform;\nsetAttr \".tx\" one;"),
              HasSubstr("scene.ma:2: 'one' stands where a number"));
  EXPECT_THAT(error_of("createNode transform;\nsetAttr \".opm\" 1 2;"), HasSubstr("a matrix has 16 values"));
  EXPECT_THAT(read("createNode transform;setAttr \".tx\" nan;").warnings.all(), warns("not a finite number", 1));
  EXPECT_THAT(read("createNode transform;setAttr \".ro\" 6;").warnings.all(), warns("rotate order", 1));
  EXPECT_THAT(read("createNode transform;setAttr \".ro\" -1;").warnings.all(), warns("rotate order", 1));
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
  EXPECT_EQ(scene.attributes.value(scene.names.require("a"), "blend").to_float(), 0.25);
  EXPECT_EQ(scene.attributes.value(scene.names.require("a"), "plain").to_float(), 0.0);
  EXPECT_EQ(scene.attributes.value(scene.names.require("b"), "blend").to_float(), 0.75);
}

// --- range and shapes -------------------------------------------------------------------------------------------

TEST(MayaAscii, ThePlaybackRangeIsThatOfTheConfigurationNode) {
  const Scene scene = clean(
      "createNode script -n \"uiConfigurationScriptNode\";setAttr \".b\" -type \"string\" \"playbackOptions -min 7 "
      "-max 8\";"
      "createNode script -n \"sceneConfigurationScriptNode\";"
      "setAttr \".b\" -type \"string\" \"playbackOptions -min -3.5 -max 120 -ast 1 -aet 200 \";setAttr \".st\" 6;" +
      kBall);
  EXPECT_EQ(scene.settings.playback_min(), -3.5);
  EXPECT_EQ(scene.settings.playback_max(), 120.0);
}

TEST(MayaAscii, AScriptMayBeWrittenInPieces) {
  const Scene scene = clean(
      "createNode script -n \"sceneConfigurationScriptNode\";setAttr \".b\" -type \"string\" (\n\"// "
      "hello\\nplaybackOptions -m\"\n\t+ \"in 2 -max 3\");");
  EXPECT_EQ(scene.settings.playback_min(), 2.0);
  EXPECT_EQ(scene.settings.playback_max(), 3.0);
}

TEST(MayaAscii, WithoutAConfigurationNodeTheKeysAreTheRange) {
  EXPECT_EQ(clean(kBall).settings.playback_min(), 0.0);
  EXPECT_EQ(clean(kBall).settings.playback_max(), 10.0);
  const Scene broken = clean(
      "createNode script -n \"sceneConfigurationScriptNode\";setAttr \".b\" -type \"string\" \"playbackOptions -min 9 "
      "-max 3\";" +
      kBall);
  EXPECT_EQ(broken.settings.playback_max(), 10.0);
}

TEST(MayaAscii, ACurveShapeHasItsPoints) {
  const Scene scene = clean(
      "createNode transform -n \"curve1\";createNode nurbsCurve -n \"curveShape1\" -p \"curve1\";setAttr -k off \".v\";"
      "setAttr \".cc\" -type \"nurbsCurve\" \n\t3 2 0 no 3\n\t7 0 0 0 1 2 2 2\n\t5\n\t1 2 3\n\t4 5 6\n\t7 8 9\n\t10 11 "
      "12\n\t13 14 15.5\n\t;");
  const NodeId shape = scene.names.require("curveShape1");
  EXPECT_EQ(scene.attributes.curve_degree(shape), 3);
  ASSERT_EQ(scene.attributes.curve_points(shape).size(), 5u);
  EXPECT_EQ(scene.attributes.curve_points(shape)[4], (Vector{13, 14, 15.5}));
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
  EXPECT_EQ(scene.curves.at(scene.names.require("d")).keys()[19999].in, Tangent::flat);
}

TEST(MayaAscii, NamesCharacterSetsAndClipsThatItDoesNotPlay) {
  const Scene one = read("createNode character -n \"hero\";createNode animClip -n \"wave\";");
  EXPECT_THAT(
      one.warnings.all(),
      UnorderedElementsAre(Field(&Warning::kind, "the character set 'hero' is not played; bake it before saving"),
                           Field(&Warning::kind, "the clip 'wave' is not played; bake it before saving")));
  std::string clips;
  for (int i = 0; i < 10; ++i) clips += "createNode animClip -n \"c" + std::to_string(i) + "\";";
  EXPECT_THAT(read(clips).warnings.all(),
              ElementsAre(Field(&Warning::kind,
                                "the clips 'c0', 'c1', 'c2', 'c3', 'c4', 'c5', 'c6', 'c7' and 2 more are "
                                "not played; bake them before saving")));
}

TEST(MayaAscii, ReadsTheHeadersOfManyVersions) {
  for (const char* version : {"2008", "2012", "2016", "2018ff07", "2020", "2024ff02", "2026"}) {
    const Scene scene = clean("//Maya ASCII " + std::string(version) +
                              " scene\n//Name: a.ma\n//Last modified: Sun, Dec 09, 2007 01:16:00 PM\n//Codeset: 932\n"
                              "requires maya \"" +
                              version +
                              "\";\nrequires -nodeType \"aiOptions\" \"mtoa\" \"5.0\";\n"
                              "currentUnit -l centimeter -a degree -t pal;\nfileInfo \"application\" \"maya\";\n"
                              "fileInfo \"UUID\" \"8F3A\";\ncreateNode transform -n \"ball\";\n"
                              "\trename -uid \"0E29FC62-4828-4A3E-A79A-B4A3D560A8FE\";\n\tsetAttr \".t\" -type "
                              "\"double3\" 1 2 3 ;\n// End of a.ma\n");
    EXPECT_EQ(scene.settings.frames_per_second(), 25.0);
    expect_at(scene, "ball", 1.0, 1.0, 2.0, 3.0);
  }
}

TEST(ReadScene, ReadsTheExamplesByTheirExtension) {
  for (const char* name : {"bounce.ma", "arm.ma", "prop.ma", "walk.bvh"}) {
    const Scene scene = read_scene(std::filesystem::path(VANTORELIX_SOURCE_DIR) / "examples" / name);
    EXPECT_THAT(scene.warnings.all(), IsEmpty()) << name;
    EXPECT_GT(scene.settings.playback_max(), scene.settings.playback_min()) << name;
  }
}

}  // namespace
}  // namespace vantorelix::standalone
