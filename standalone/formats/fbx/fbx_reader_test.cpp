#include <fstream>
#include <sstream>

#include "standalone/formats/fbx/fbx_test_scene.h"
#include "standalone/scene/evaluation/evaluator.h"

namespace vantorelix::standalone {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;

ReadOptions with_take(const std::string& name) {
  ReadOptions options;
  options.take = name;
  return options;
}

// --- takes and time ----------------------------------------------------------------------------------------------

TEST(Fbx, FrameFIsFRatesOfASecondIntoTheTake) {
  const Scene scene = read(ramp());
  EXPECT_EQ(scene.settings.frames_per_second(), 24.0);
  expect_at(scene, "ball", 0, 0, 0, 0);
  expect_at(scene, "ball", 5, 10, 0, 0);
  expect_at(scene, "ball", 30, 20, 0, 0);
}

TEST(Fbx, TheFirstTakeIsReadAndAllAreListed) {
  const Scene scene = read(ramp());
  ASSERT_EQ(scene.settings.takes().size(), 2u);
  EXPECT_EQ(scene.settings.takes()[0].name, "walk");
  EXPECT_EQ(scene.settings.takes()[1].name, "run");
  EXPECT_EQ(scene.settings.take(), 0u);
  EXPECT_EQ(scene.settings.takes()[1].last, 30.0);
  EXPECT_EQ(scene.settings.playback_min(), 1.0);
  EXPECT_EQ(scene.settings.playback_max(), 12.0);
}

TEST(Fbx, ATakeIsReadByItsName) {
  const Scene scene = read(ramp(), with_take("run"));
  EXPECT_EQ(scene.settings.take(), 1u);
  EXPECT_EQ(scene.settings.playback_max(), 30.0);
  expect_at(scene, "ball", 5, 0, 20, 0);
}

TEST(Fbx, ATakeThatIsNotThereIsAnErrorThatNamesThoseThatAre) {
  EXPECT_EQ(fbx_error(ramp().text(), with_take("jump")),
            "scene.fbx: there is no take 'jump'; the file has 'walk', 'run'");
  EXPECT_EQ(fbx_error(FbxText().node("a").text(), with_take("jump")),
            "scene.fbx: there is no take 'jump'; the file has no takes");
}

TEST(Fbx, KeysAreThoseOfTheFileOnWholeFramesAndOff) {
  FbxText text;
  text.node("a").take("t", 0, 10).curve("a", "Lcl Translation", 'X', {{-3, 0}, {0.5, 2}, {7, 1}, {100000, 1}});
  const Scene scene = read(text);
  const std::vector<double> times = scene.curves.key_times(scene.names.require("a"));
  ASSERT_EQ(times.size(), 4u);
  EXPECT_THAT(times, ElementsAre(-3.0, 0.5, 7.0, 100000.0));
}

TEST(Fbx, FramesOfFilmForTelevisionAreWhole) {
  FbxText text;
  const double slower = 1001.0 / 1000.0 * 24.0 / 30.0;  // frames of 24 that 29.97 a second last
  text.setting("TimeMode", 9).node("a").take("t", 0, 10 * slower);
  text.curve("a", "Lcl Translation", 'X', {{0, 0}, {1 * slower, 1}, {2997 * slower, 2}});
  std::string bytes = text.text();
  bytes.erase(bytes.find("P: \"TimeMode\", \"enum\""),
              std::string("P: \"TimeMode\", \"enum\", \"\", \"\",11\n").size());
  const Scene scene = read_fbx(bytes, "scene.fbx");
  EXPECT_EQ(scene.settings.frames_per_second(), 30000.0 / 1001.0);
  EXPECT_EQ(scene.settings.playback_max(), 10.0);
  EXPECT_THAT(scene.curves.key_times(scene.names.require("a")), ElementsAre(0.0, 1.0, 2997.0));
}

TEST(Fbx, ATakeWithoutALengthPlaysItsKeys) {
  FbxText text;
  text.node("a").take("t", 0, 0).curve("a", "Lcl Translation", 'X', {{3, 0}, {9, 2}});
  const Scene scene = read(text);
  EXPECT_EQ(scene.settings.playback_min(), 3.0);
  EXPECT_EQ(scene.settings.playback_max(), 9.0);
}

TEST(Fbx, AFileWithoutTakesStandsStill) {
  const Scene scene = read(FbxText().node("a", "", {{"Lcl Translation", {1, 2, 3}}}));
  EXPECT_THAT(scene.settings.takes(), IsEmpty());
  EXPECT_EQ(scene.settings.playback_min(), scene.settings.playback_max());
  expect_at(scene, "a", 7, 1, 2, 3);
  EXPECT_FALSE(scene.evaluation.is_animated(scene.names.require("a")));
}

// --- curves ------------------------------------------------------------------------------------------------------

TEST(Fbx, ACurveOfOneLayerIsARealOneThatCanBeEdited) {
  Scene scene = read(ramp());
  const NodeId curve = scene.curves.driving_curve(scene.names.require("ball"), Channel::translateX);
  ASSERT_NE(curve, kNoNode);
  scene.curves.set_key(curve, 10, 60);
  expect_at(scene, "ball", 5, 30, 0, 0);
}

TEST(Fbx, AStepHoldsItsValueUpToTheNextKeyAndOneToTheNextTakesItAtOnce) {
  FbxText text;
  text.node("a")
      .take("t", 0, 20)
      .curve("a", "Lcl Translation", 'X', {{0, 1, kFbxStep}, {5, 2, kFbxStepNext}, {10, 3, kFbxLinear}, {20, 13}});
  const Scene scene = read(text);
  expect_at(scene, "a", 4.999, 1, 0, 0);
  expect_at(scene, "a", 5, 2, 0, 0);
  expect_at(scene, "a", 5.001, 3, 0, 0);
  expect_at(scene, "a", 15, 8, 0, 0);
}

TEST(Fbx, FlatTangentsGiveTheirCubicWithoutWeights) {
  FbxText text;
  text.node("a").take("t", 0, 8).curve("a", "Lcl Translation", 'X', {{0, 0, kFbxBroken}, {8, 10, kFbxBroken}});
  const Scene scene = read(text);
  expect_at(scene, "a", 2, 10 * (3 / 16.0 - 2 / 64.0), 0, 0);
  EXPECT_FALSE(scene.curves.at(scene.curves.driving_curve(scene.names.require("a"), Channel::translateX)).weighted());
}

TEST(Fbx, LongHandlesMakeACurveWeighted) {
  FbxText text;
  text.node("a").take("t", 0, 8).curve("a", "Lcl Translation", 'X',
                                       {{0, 0, kFbxWeighted, 0, 0, 5000, 5000}, {8, 10, kFbxBroken}});
  const Scene scene = read(text);
  EXPECT_TRUE(scene.curves.at(scene.curves.driving_curve(scene.names.require("a"), Channel::translateX)).weighted());
  // Half-way along handles of half the span: 3 s^2 - 2 s^3 of both time and value differ but at the middle.
  expect_at(scene, "a", 4, 5, 0, 0);
  // At s = 1/4 time is 3 * 9/64 * 1/2 + 3 * 3/64 * 1/2 + 1/64 = 19/64.
  expect_at(scene, "a", 8 * 19 / 64.0, 10 * (3 / 16.0 - 2 / 64.0), 0, 0);
}

TEST(Fbx, RotationsAreDegreesInTheFile) {
  FbxText text;
  text.node("a").node("b", "a", {{"Lcl Translation", {1, 0, 0}}}).take("t", 0, 10);
  text.curve("a", "Lcl Rotation", 'Z', {{0, 0}, {10, 180}});
  expect_at(read(text), "b", 5, 0, 1, 0);
}

TEST(Fbx, KeysAtOneTimeAreAJump) {
  FbxText text;
  text.node("a").take("t", 0, 10).curve("a", "Lcl Translation", 'X', {{0, 0}, {5, 10}, {5, 20}, {10, 30}});
  const Scene scene = read(text);
  expect_at(scene, "a", 4, 8, 0, 0);
  expect_at(scene, "a", 5, 20, 0, 0);
  expect_at(scene, "a", 7.5, 25, 0, 0);
}

// --- layers ------------------------------------------------------------------------------------------------------

FbxText layered() {
  FbxText text;
  text.node("a").take("t", 0, 20).curve("a", "Lcl Translation", 'X', {{0, 0}, {20, 20}});
  text.layer("offset", {{"BlendMode", {0}}, {"Weight", {50}}});
  text.curve("a", "Lcl Translation", 'X', {{5, 0}, {15, 8}});
  return text;
}

TEST(Fbx, LayersAddUpByTheirWeights) {
  const Scene scene = read(layered());
  expect_at(scene, "a", 5, 5, 0, 0);
  expect_at(scene, "a", 10, 10 + 2, 0, 0);
  expect_at(scene, "a", 20, 20 + 4, 0, 0);
}

TEST(Fbx, WhatSeveralLayersDriveHasTheKeysOfAll) {
  const Scene scene = read(layered());
  const NodeId node = scene.names.require("a");
  EXPECT_THAT(scene.curves.key_times(node), ElementsAre(0.0, 5.0, 15.0, 20.0));
  EXPECT_TRUE(scene.evaluation.is_animated(node));
  EXPECT_THAT(scene.evaluation.not_followed(node), IsEmpty());
}

TEST(Fbx, ALayerThatReplacesAllBelowItIsACurve) {
  FbxText text;
  text.node("a").take("t", 0, 20);
  text.layer("top", {{"BlendMode", {1}}}).curve("a", "Lcl Translation", 'X', {{5, 0}, {15, 8}});
  const Scene scene = read(text);
  EXPECT_NE(scene.curves.driving_curve(scene.names.require("a"), Channel::translateX), kNoNode);
  expect_at(scene, "a", 10, 4, 0, 0);
}

TEST(Fbx, BothRoadsOfEvaluationGiveTheSameDoubles) {
  FbxText text = layered();
  text.node("b", "a", {{"Lcl Translation", {1, 2, 3}}});
  const Scene scene = read(text);
  Evaluator evaluator(scene.evaluation, scene.names.require("b"));
  for (double frame = -1.0; frame < 22.0; frame += 0.3) {
    EXPECT_EQ(evaluator.translation(frame),
              scene.evaluation.world_matrix(scene.names.require("b"), frame).translation());
  }
}

// --- nodes -------------------------------------------------------------------------------------------------------

TEST(Fbx, OnlyWhatNeedsItIsAJoint) {
  FbxText text;
  text.node("plain").node("bone", "", {}, "LimbNode").node("turned", "", {{"PreRotation", {0, 0, 90}}});
  text.node("scaled", "plain", {{"InheritType", {2}}});
  const Scene scene = read(text);
  EXPECT_EQ(scene.nodes.type(scene.names.require("plain")), "transform");
  EXPECT_EQ(scene.nodes.type(scene.names.require("bone")), "joint");
  EXPECT_EQ(scene.nodes.type(scene.names.require("turned")), "joint");
  EXPECT_EQ(scene.nodes.type(scene.names.require("scaled")), "joint");
}

TEST(Fbx, APreRotationTurnsTheRotation) {
  FbxText text;
  text.node("a", "", {{"PreRotation", {0, 0, 90}}, {"Lcl Rotation", {0, 90, 0}}});
  text.node("b", "a", {{"Lcl Translation", {0, 0, 1}}});
  expect_at(read(text), "b", 0, 0, 1, 0);
}

TEST(Fbx, APostRotationTurnsBackBeforeTheRotation) {
  FbxText text;
  text.node("a", "", {{"PostRotation", {0, 0, 90}}, {"Lcl Rotation", {0, 90, 0}}});
  text.node("b", "a", {{"Lcl Translation", {0, 1, 0}}});
  expect_at(read(text), "b", 0, 0, 0, -1);
}

TEST(Fbx, ARotationPivotStaysWhereItIs) {
  FbxText text;
  text.node("a", "", {{"RotationPivot", {5, 0, 0}}, {"RotationOffset", {0, 0, 7}}, {"Lcl Rotation", {0, 0, 90}}});
  text.node("b", "a", {{"Lcl Translation", {6, 0, 0}}});
  const Scene scene = read(text);
  expect_at(scene, "a", 0, 5, -5, 7);
  expect_at(scene, "b", 0, 5, 1, 7);
}

TEST(Fbx, AScalingPivotStaysWhereItIs) {
  FbxText text;
  text.node("a", "", {{"ScalingPivot", {5, 0, 0}}, {"ScalingOffset", {0, 1, 0}}, {"Lcl Scaling", {3, 1, 1}}});
  expect_at(read(text), "a", 0, -10, 1, 0);
}

TEST(Fbx, AJointThatLeavesItsParentsScaleOutStillHangsWhereItReaches) {
  FbxText text;
  text.node("a", "", {{"Lcl Scaling", {2, 2, 2}}});
  text.node("b", "a", {{"InheritType", {2}}, {"Lcl Translation", {1, 0, 0}}});
  text.node("c", "b", {{"InheritType", {2}}, {"Lcl Translation", {1, 0, 0}}});
  const Scene scene = read(text);
  expect_at(scene, "b", 0, 2, 0, 0);
  expect_at(scene, "c", 0, 3, 0, 0);
}

TEST(Fbx, ANodeThatInheritsScalesByComponentKeepsThemWhereItHasScaleCurvesOfItsOwn) {
  FbxText text;
  text.node("a", "", {{"Lcl Scaling", {2, 2, 2}}}).node("b", "a", {{"InheritType", {0}}});
  text.node("c", "b", {{"InheritType", {1}}, {"Lcl Translation", {2, 0, 0}}}).take("t", 0, 10);
  for (const char axis : {'X', 'Y', 'Z'}) text.curve("b", "Lcl Scaling", axis, {{0, 1}, {10, 3}});
  const Scene scene = read(text);
  expect_at(scene, "c", 0, 4, 0, 0);
  expect_at(scene, "c", 10, 12, 0, 0);
  EXPECT_THAT(scene.curves.key_times(scene.names.require("b")), ElementsAre(0.0, 10.0));
}

TEST(Fbx, WhereGeometryIsMovesNoNode) {
  expect_at(read(FbxText().node("a", "", {{"GeometricTranslation", {5, 5, 5}}, {"GeometricRotation", {1, 2, 3}}})), "a",
            0, 0, 0, 0);
}

TEST(Fbx, ANameKeepsWhatTheFileSaysWhereTheSceneCannot) {
  FbxText text;
  text.node("left hip").node("x", "left hip").node("root");
  const Scene scene = read(text);
  const NodeId node = scene.nodes.children(kWorld).at(0);
  EXPECT_EQ(scene.names.short_name(node), "left_hip");
  EXPECT_EQ(name_in_file(scene, node), "left hip");
  EXPECT_EQ(scene.names.long_name(scene.names.require("x")), "|left_hip|x");
}

// --- units and axes ----------------------------------------------------------------------------------------------

FbxText placed(double up_axis, double unit) {
  FbxText text;
  text.setting("UpAxis", up_axis).setting("UpAxisSign", 1).setting("FrontAxis", up_axis == 1 ? 2 : 1);
  text.setting("FrontAxisSign", up_axis == 1 ? 1 : -1).setting("CoordAxis", 0).setting("CoordAxisSign", 1);
  text.setting("UnitScaleFactor", unit).node("a", "", {{"Lcl Translation", {1, 2, 3}}, {"Lcl Rotation", {0, 0, 90}}});
  text.node("b", "a", {{"Lcl Translation", {10, 0, 0}}});
  return text;
}

ReadOptions turned(char axis, const std::string& unit = "") {
  ReadOptions options;
  options.up_axis = axis;
  options.linear_unit = unit;
  return options;
}

TEST(Fbx, PositionsAreInTheFilesOwnAxesAndUnit) {
  const Scene scene = read(placed(2, 100));
  EXPECT_EQ(scene.settings.up_axis(), 'z');
  EXPECT_EQ(scene.settings.linear_unit(), "m");
  expect_at(scene, "b", 0, 1, 12, 3);
  EXPECT_EQ(read(placed(1, 1)).settings.up_axis(), 'y');
  EXPECT_EQ(read(placed(1, 1)).settings.linear_unit(), "cm");
  EXPECT_EQ(read(placed(1, 2.54)).settings.linear_unit(), "in");
  EXPECT_EQ(read(placed(1, 7)).settings.linear_unit(), "7 cm");
}

TEST(Fbx, AnotherAxisTurnsTheScene) {
  const Scene y_up = read(placed(2, 1), turned('y'));
  EXPECT_EQ(y_up.settings.up_axis(), 'y');
  expect_at(y_up, "b", 0, 1, 3, -12);
  const Scene z_up = read(placed(1, 1), turned('z'));
  EXPECT_EQ(z_up.settings.up_axis(), 'z');
  expect_at(z_up, "b", 0, 1, -3, 12);
  expect_at(read(placed(1, 1), turned('y')), "b", 0, 1, 12, 3);
}

TEST(Fbx, ASceneWhoseUpAxisIsTheOneAskedForIsNotTurnedWhereverItsFrontIs) {
  FbxText text = placed(1, 1);
  text.setting("FrontAxisSign", -1).setting("CoordAxisSign", -1);
  expect_at(read(text, turned('y')), "b", 0, 1, 12, 3);
  expect_at(read(text, turned('z')), "b", 0, -1, 3, 12);
}

TEST(Fbx, AnotherUnitScalesTheScene) {
  const Scene scene = read(placed(2, 100), turned(0, "cm"));
  EXPECT_EQ(scene.settings.linear_unit(), "cm");
  expect_at(scene, "b", 0, 100, 1200, 300);
  expect_at(read(placed(2, 2.54), turned('y', "mm")), "b", 0, 25.4, 76.2, -304.8);
  EXPECT_EQ(fbx_error(placed(1, 1).text(), turned(0, "parsec")),
            "scene.fbx: 'parsec' is not a unit; give mm, cm, m, km, in, ft, yd or mi");
}

TEST(Fbx, ConvertingLeavesCurvesAsTheyAre) {
  const Scene scene = read(ramp(), turned('z', "mm"));
  expect_at(scene, "ball", 5, 100, 0, 0);
  const NodeId curve = scene.curves.driving_curve(scene.names.require("ball"), Channel::translateX);
  EXPECT_EQ(scene.curves.at(curve).keys()[1].value, 20.0);
}

// --- what is not followed ----------------------------------------------------------------------------------------

TEST(Fbx, WhatAConstraintMovesIsMarkedAndCounted) {
  FbxText text;
  text.node("a").node("b").node("c", "b");
  text.constraint("Parent-Child", "a").constraint("Parent-Child", "b");
  const Scene scene = read(text);
  EXPECT_THAT(scene.warnings.all(), ElementsAre(testing::AllOf(Field(&Warning::kind, HasSubstr("'Parent-Child'")),
                                                               Field(&Warning::count, 2u))));
  EXPECT_EQ(scene.evaluation.not_followed(scene.names.require("a")).size(), 1u);
  EXPECT_EQ(scene.evaluation.not_followed(scene.names.require("c")).size(), 1u);
}

TEST(Fbx, WhatAnotherPropertyDrivesIsMarkedAndCounted) {
  FbxText text;
  text.node("a", "", {{"Lcl Translation", {1, 2, 3}}}).node("b", "", {{"Lcl Translation", {4, 5, 6}}});
  const Scene scene = read(text.drive("a", "b", "Lcl Translation"));
  EXPECT_THAT(scene.warnings.all(), ElementsAre(Field(&Warning::kind, HasSubstr("another one drives"))));
  EXPECT_THAT(scene.evaluation.not_followed(scene.names.require("a")), IsEmpty());
  EXPECT_EQ(scene.evaluation.not_followed(scene.names.require("b")).size(), 1u);
}

TEST(Fbx, ALimitIsNamedWhereTheValuesLeaveIt) {
  const auto limited = [](double least, double on) {
    FbxText text;
    text.node("a", "", {{"TranslationActive", {1}}, {"TranslationMinY", {on}}, {"TranslationMin", {9, least, 9}}});
    return read(text.take("t", 0, 9).curve("a", "Lcl Translation", 'Y', {{0, -2}, {9, 5}}));
  };
  EXPECT_THAT(limited(-1, 1).warnings.all(), ElementsAre(Field(&Warning::kind, HasSubstr("limits are not applied"))));
  const Scene left = limited(-1, 1);
  EXPECT_EQ(left.evaluation.not_followed(left.names.require("a")).size(), 1u);
  EXPECT_THAT(limited(-2, 1).warnings.all(), IsEmpty());
  EXPECT_THAT(limited(-1, 0).warnings.all(), IsEmpty());
}

TEST(Fbx, AnimatedRotationOrdersAndPostRotationsAreNamed) {
  for (const char* property : {"RotationOrder", "PostRotation"}) {
    FbxText text;
    text.node("a").take("t", 0, 9).curve("a", property, 'X', {{0, 1}, {9, 2}});
    EXPECT_THAT(read(text).warnings.all(), ElementsAre(Field(&Warning::kind, HasSubstr(property))));
  }
}

TEST(Fbx, ARotationOrderThatIsNoneOfTheSixIsNamed) {
  EXPECT_THAT(read(FbxText().node("a", "", {{"RotationOrder", {6}}})).warnings.all(),
              Contains(Field(&Warning::kind, HasSubstr("rotation order"))));
}

}  // namespace
}  // namespace vantorelix::standalone
