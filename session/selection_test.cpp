#include "session/selection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "session/failure.h"
#include "standalone/formats/reader.h"

namespace vantorelix::session {
namespace {

using standalone::NodeId;
using standalone::Scene;
using testing::ElementsAre;

// root has hips, which has leg, which has foot; hips has a shape; RootCopy stands beside root.
Scene figure() {
  Scene scene;
  const NodeId root = scene.nodes.create("transform", "root");
  const NodeId hips = scene.nodes.create("joint", "hips", root);
  const NodeId leg = scene.nodes.create("joint", "leg_L", hips);
  scene.nodes.create("joint", "foot_L", leg);
  scene.nodes.create("mesh", "hipsShape", hips);
  scene.nodes.create("transform", "RootCopy");
  return scene;
}

std::vector<std::string> chosen(const Scene& scene, const Selection& selection) {
  std::vector<std::string> names;
  for (const NodeId node : choose(scene, selection)) names.push_back(scene.names.long_name(node));
  return names;
}

Selection selecting(std::vector<std::string> patterns) {
  Selection selection;
  selection.patterns = std::move(patterns);
  return selection;
}

Failure failure_of(const Scene& scene, const Selection& selection) {
  try {
    choose(scene, selection);
  } catch (const Failure& failure) {
    return failure;
  }
  ADD_FAILURE() << "nothing was thrown";
  return {Failure::Kind::no_trail, ""};
}

// A node of the scene that has another name in its file.
NodeId add(Scene& scene, const std::string& name, const std::string& name_in_file) {
  const NodeId node = scene.nodes.create("transform", name);
  standalone::keep_name_in_file(scene, node, name_in_file);
  return node;
}

TEST(Selection, IsInTheOrderOfThePatternsAndHasEachObjectOnce) {
  EXPECT_THAT(chosen(figure(), selecting({"leg_L", "hips", "*_L"})),
              ElementsAre("|root|hips|leg_L", "|root|hips", "|root|hips|leg_L|foot_L"));
}

TEST(Selection, KnowsSetsAlternativesAndSubtrees) {
  const Scene scene = figure();
  EXPECT_THAT(chosen(scene, selecting({"[fl]*_[LR]"})), ElementsAre("|root|hips|leg_L", "|root|hips|leg_L|foot_L"));
  EXPECT_THAT(chosen(scene, selecting({"{foot_L,root}"})), ElementsAre("|root", "|root|hips|leg_L|foot_L"));
  EXPECT_THAT(chosen(scene, selecting({"root|**"})),
              ElementsAre("|root|hips", "|root|hips|leg_L", "|root|hips|leg_L|foot_L"));
  EXPECT_THAT(chosen(scene, selecting({"|root|**|foot_L"})), ElementsAre("|root|hips|leg_L|foot_L"));
}

TEST(Selection, OfAShapeIsItsTransform) {
  EXPECT_THAT(chosen(figure(), selecting({"hipsShape"})), ElementsAre("|root|hips"));
  EXPECT_THAT(chosen(figure(), selecting({"*Shap?"})), ElementsAre("|root|hips"));
}

TEST(Selection, OfASubtreeLeavesItsTopOutEvenWhenThatHasAShape) {
  EXPECT_THAT(chosen(figure(), selecting({"|root|hips|**"})),
              ElementsAre("|root|hips|leg_L", "|root|hips|leg_L|foot_L"));
}

TEST(Selection, LeavesOutWhatIsExcluded) {
  Selection selection = selecting({"*"});
  selection.exclude = {"hips|**", "nobody"};
  EXPECT_THAT(chosen(figure(), selection), ElementsAre("|root", "|root|hips", "|RootCopy"));
  selection = {};
  selection.all = true;
  selection.exclude = {"hipsShape", "*_L"};
  EXPECT_THAT(chosen(figure(), selection), ElementsAre("|root", "|RootCopy"));
}

TEST(Selection, OfWhatIsAnimatedMayExcludeToo) {
  Scene scene = figure();
  for (const char* name : {"leg_L", "RootCopy"})
    for (const double frame : {1.0, 5.0})
      scene.curves.set_key(scene.names.find(name), standalone::Channel::translateX, frame, frame);
  Selection selection;
  selection.exclude = {"|root|**"};
  EXPECT_THAT(chosen(scene, selection), ElementsAre("|RootCopy"));
}

TEST(Selection, MayIgnoreCaseInEveryPattern) {
  Selection selection = selecting({"ROOT*"});
  selection.ignore_case = true;
  EXPECT_THAT(chosen(figure(), selection), ElementsAre("|root", "|RootCopy"));
  selection.exclude = {"rootcopy"};
  EXPECT_THAT(chosen(figure(), selection), ElementsAre("|root"));
  EXPECT_EQ(failure_of(figure(), selecting({"ROOT*"})).kind, Failure::Kind::no_match);
}

TEST(Selection, OfAnExactNameIsThatObjectAloneWhateverCharactersItHas) {
  Scene scene;
  add(scene, "a_0_", "a[0]");
  add(scene, "a0", "a0");
  add(scene, "open", "b{");
  add(scene, "star", "a*");
  EXPECT_THAT(chosen(scene, selecting({"a[0]"})), ElementsAre("|a_0_"));
  EXPECT_THAT(chosen(scene, selecting({"b{"})), ElementsAre("|open"));
  EXPECT_THAT(chosen(scene, selecting({"a*"})), ElementsAre("|star"));
  EXPECT_THAT(chosen(scene, selecting({"a[0-9]"})), ElementsAre("|a0"));
  EXPECT_THAT(chosen(scene, selecting({"a[[]*"})), ElementsAre("|a_0_"));
  Selection selection = selecting({"A[0]"});
  selection.ignore_case = true;
  EXPECT_THAT(chosen(scene, selection), ElementsAre("|a_0_"));
}

TEST(Selection, KnowsPathsOfNamesInTheFile) {
  Scene scene;
  const NodeId hand = add(scene, "Left_Hand", "Left Hand");
  scene.nodes.create("joint", "thumb", hand);
  add(scene, "a_b", "a|b");
  EXPECT_THAT(chosen(scene, selecting({"Left Hand|*"})), ElementsAre("|Left_Hand|thumb"));
  EXPECT_THAT(chosen(scene, selecting({"Left_Hand|thumb"})), ElementsAre("|Left_Hand|thumb"));
  EXPECT_THAT(chosen(scene, selecting({"a*b"})), ElementsAre("|a_b"));
  EXPECT_THAT(chosen(scene, selecting({"a|b"})), ElementsAre("|a_b"));
}

TEST(Selection, TakesAColonInFrontForTheRootNamespace) {
  EXPECT_THAT(chosen(figure(), selecting({":root"})), ElementsAre("|root"));
  EXPECT_THAT(chosen(figure(), selecting({":leg_?"})), ElementsAre("|root|hips|leg_L"));
}

TEST(Selection, SaysWhyThereIsNone) {
  using Kind = Failure::Kind;
  const Scene scene = figure();
  EXPECT_EQ(failure_of(scene, {}).kind, Kind::nothing_animated);
  EXPECT_EQ(failure_of(scene, selecting({"root", "nobody*"})).kind, Kind::no_match);
  EXPECT_STREQ(failure_of(scene, selecting({"nobody*"})).what(), "no object matches 'nobody*'");
  const Failure bad = failure_of(scene, selecting({"leg[LR"}));
  EXPECT_EQ(bad.kind, Kind::bad_pattern);
  EXPECT_STREQ(bad.what(), "'leg[LR' is not a valid pattern: its '[' is not closed");
  Selection selection;
  selection.all = true;
  EXPECT_EQ(failure_of(Scene(), selection).kind, Kind::no_object);
  selection.exclude = {"*"};
  EXPECT_EQ(failure_of(scene, selection).kind, Kind::all_excluded);
}

}  // namespace
}  // namespace vantorelix::session
