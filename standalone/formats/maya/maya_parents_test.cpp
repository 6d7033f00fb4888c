// Parents of unknown types, and nodes with several parents.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "standalone/formats/maya/maya_test_scene.h"

namespace vantorelix::standalone {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string node(const std::string& name, const std::string& parent = "", const std::string& values = "") {
  return "createNode transform -n \"" + name + "\"" + (parent.empty() ? "" : " -p \"" + parent + "\"") + ";" + values;
}

std::string at(double x) { return "setAttr \".t\" -type \"double3\" " + std::to_string(x) + " 0 0;"; }

// --- parents of unknown types ------------------------------------------------------------------------------------

TEST(MayaParents, ChildrenOfAnUnknownTypeAtTheTopStayUnderIt) {
  const Scene scene = read(
      "createNode lookAt -n \"look\";setAttr \".t\" -type \"double3\" 1 2 3;setAttr \".rz\" 90;setAttr \".sx\" "
      "\"no\";" +
      node("child", "look", at(4)) + node("second", "look") + node("third", "child"));
  EXPECT_EQ(scene.names.long_name(scene.names.require("child")), "|look|child");
  EXPECT_EQ(scene.nodes.type(scene.names.require("look")), "lookAt");
  expect_at(scene, "child", 1, 1, 6, 3);
  expect_at(scene, "second", 1, 1, 2, 3);
  expect_at(scene, "third", 1, 1, 6, 3);
  EXPECT_THAT(
      scene.warnings.all(),
      warns("'lookAt' is not known and is placed as a plain transform; bake it before saving if it moves its children",
            1));
}

TEST(MayaParents, AnUnknownTypeKeepsWhatDroveItWhenItTurnsOutToBeAParent) {
  const Scene scene =
      read("createNode rigSpace -n \"space\";" + curve("setAttr \".tan\" 2;setAttr \".ktv[0:1]\" 0 0 10 10;") +
           "connectAttr \"c.o\" \"space.tx\";" + node("child", "space", at(1)));
  expect_at(scene, "child", 5, 6, 0, 0);
}

TEST(MayaParents, AnUnknownTypeThatAParentStatementNamesIsInTheDagToo) {
  const Scene scene = read("createNode assemblyThing -n \"set\";" + at(5) + node("a") + "parent -s \"a\" \"set\";");
  EXPECT_EQ(scene.names.long_name(scene.names.require("a")), "|set|a");
  expect_at(scene, "a", 1, 5, 0, 0);
}

TEST(MayaParents, WhatIsNotInTheDagForSureIsNoParent) {
  const Scene scene = read("createNode animCurveTL -n \"c\";" + node("a", "c") + node("box") +
                           "createNode mesh -n \"boxShape\" -p \"box\";" + node("b", "boxShape"));
  EXPECT_EQ(scene.nodes.parent(scene.names.require("a")), kWorld);
  EXPECT_EQ(scene.nodes.parent(scene.names.require("b")), kWorld);
  EXPECT_THAT(scene.warnings.all(), warns("a node's parent is not in the file", 2));
}

// --- instances ---------------------------------------------------------------------------------------------------

// Two groups, and a ball that moves under the first.
const std::string kGroups = node("left", "", at(100)) + node("right", "", at(200)) + node("ball", "left") +
                            curve("setAttr \".tan\" 2;setAttr \".ktv[0:1]\" 0 0 10 10;");
const std::string kDriven = "connectAttr \"c.o\" \"|left|ball.tx\";";

TEST(MayaInstances, AnInstanceHasItsOwnPlaceAndTheSameKeys) {
  const Scene scene = clean(kGroups + "parent -s -nc -r -add \"|left|ball\" \"right\" ;" + kDriven);
  expect_at(scene, "|left|ball", 5, 105, 0, 0);
  expect_at(scene, "|right|ball", 5, 205, 0, 0);
  const NodeId twin = scene.names.require("|right|ball");
  EXPECT_THAT(scene.curves.key_times(twin), ElementsAre(0.0, 10.0));
  EXPECT_EQ(scene.curves.driving_curve(twin, Channel::translateX), scene.names.require("c"));
  EXPECT_TRUE(scene.evaluation.is_animated(twin));
}

TEST(MayaInstances, ValuesAreTheInstancedNodesWhicheverPathNamesIt) {
  const Scene scene =
      clean(kGroups +
            "parent -r -add \"ball\" \"right\";setAttr \"|right|ball.ty\" 7;setAttr \"ball.tz\" 3;"
            "setAttr \"|left|ball.opm\" 1 0 0 0 0 1 0 0 0 0 1 0 0 0 4 1;connectAttr \"c.o\" \"|right|ball.tx\";");
  expect_at(scene, "|left|ball", 5, 105, 7, 7);
  expect_at(scene, "|right|ball", 5, 205, 7, 7);
}

TEST(MayaInstances, WhatIsBelowTheNodeIsInstancedToo) {
  const Scene scene = clean(kGroups + node("child", "ball", at(1)) + node("leaf", "child", at(1)) +
                            "createNode mesh -n \"leafShape\" -p \"leaf\";parent -add \"ball\" \"right\";setAttr "
                            "\"|right|ball|child.ty\" 3;" +
                            kDriven);
  expect_at(scene, "|left|ball|child|leaf", 5, 107, 3, 0);
  expect_at(scene, "|right|ball|child|leaf", 5, 207, 3, 0);
  EXPECT_EQ(scene.nodes.shapes(scene.names.require("|right|ball|child|leaf")).size(), 1u);
}

TEST(MayaInstances, AnInstancedShapeHangsUnderItsSecondTransform) {
  const Scene scene = clean(node("a") + "createNode mesh -n \"aShape\" -p \"a\";" + node("b") +
                            "parent -s -nc -r -add \"|a|aShape\" \"b\";");
  EXPECT_EQ(scene.nodes.shapes(scene.names.require("b")).size(), 1u);
}

TEST(MayaInstances, InstancesOfInstancesHaveEveryPath) {
  const Scene scene = clean(kGroups + node("top", "", at(1000)) +
                            "parent -add \"ball\" \"right\";parent -add \"right\" \"top\";" + kDriven);
  expect_at(scene, "|right|ball", 5, 205, 0, 0);
  expect_at(scene, "|top|right|ball", 5, 1205, 0, 0);
  EXPECT_EQ(scene.names.match("ball").size(), 3u);
}

TEST(MayaInstances, WhatIsNotFollowedIsNotInTheInstanceEither) {
  const Scene scene = read(kGroups +
                           "createNode expression -n \"e\";parent -add \"ball\" \"right\";connectAttr "
                           "\"e.out[0]\" \"|left|ball.tx\";");
  EXPECT_THAT(scene.evaluation.not_followed(scene.names.require("|right|ball")), ElementsAre(HasSubstr("expression")));
}

TEST(MayaInstances, ThatMultiplyWithoutEndAreCutShort) {
  std::string text = node("n0");
  for (int i = 1; i < 40; ++i) {
    const std::string above = "n" + std::to_string(i - 1), name = "n" + std::to_string(i);
    text += node(name) + node("m" + std::to_string(i)) + "parent -add \"" + above + "\" \"" + name +
            "\";parent -add \"" + above + "\" \"m" + std::to_string(i) + "\";parent \"m" + std::to_string(i) + "\" \"" +
            name + "\";";
  }
  const Scene scene = read(text);
  EXPECT_THAT(scene.warnings.all(),
              Contains(testing::Field(&Warning::kind, HasSubstr("instances make more than 100000 nodes"))));
  EXPECT_LT(scene.nodes.all().size(), 101'000u);
}

TEST(MayaInstances, ANodeBelowItselfIsNotFollowedInCircles) {
  const Scene scene = read(node("a") + node("b", "a") + node("c") +
                           "parent -add \"a\" \"b\";parent -add \"a\" \"c\";"
                           "parent -add \"c\" \"a\";parent -add \"gone\" \"a\";parent -add \"a\" \"gone\";");
  EXPECT_THAT(scene.warnings.all(),
              Contains(testing::Field(&Warning::kind, HasSubstr("an instance of itself below itself"))));
  EXPECT_LT(scene.nodes.all().size(), 30u);
}

// --- damage ------------------------------------------------------------------------------------------------------

// Reads what it can of any text: it must end in a scene that can be asked, or in a FormatError.
void must_end(const std::string& text) {
  try {
    const Scene scene = read_maya_ascii(text, "damaged");
    for (const NodeId node : scene.nodes.all()) {
      scene.names.long_name(node);
      if (!scene.nodes.is_transform(node)) continue;
      scene.evaluation.world_matrix(node, 7.25);
      scene.curves.key_times(node);
      scene.evaluation.not_followed(node);
    }
  } catch (const FormatError&) {
    // The one way to refuse a file.
  }
}

TEST(MayaDamage, AnyByteOfAFileMayBeAnotherAndItMayEndAnywhere) {
  const std::string sound = "createNode lookAt -n \"l\";setAttr \".t\" 1 2 3;" + kGroups +
                            "createNode transform -n \"k\" -p \"l\";setAttr \".mtxe\" yes;parent -add \"ball\" "
                            "\"right\";parent -add \"right\" \"l\";connectAttr \"c.o\" \":time1.tw\";setAttr "
                            "\"|right|ball.ty\" 7;" +
                            kDriven;
  for (std::size_t i = 0; i < sound.size(); ++i) {
    must_end(sound.substr(0, i));
    for (const char other : {'l', ';', '"', '-', '|', '\xff'}) {
      std::string damaged = sound;
      damaged[i] = other;
      must_end(damaged);
    }
  }
}

}  // namespace
}  // namespace vantorelix::standalone
