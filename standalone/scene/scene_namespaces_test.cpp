#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/error.h"
#include "standalone/scene/scene.h"

namespace vantorelix::standalone {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string text_of_failure(const std::function<void()>& f) {
  try {
    f();
  } catch (const host::Error& error) {
    return error.what();
  }
  return "nothing was thrown";
}

// What rename would make of a name, with an asterisk where it drops a namespace.
std::string renamed(const Scene& s, std::string_view name, bool relative_counts = true) {
  const Scene::NewName wanted = s.name_for_renamed(name, relative_counts);
  return wanted.text + (wanted.dropped ? "*" : "");
}

TEST(SceneNamespaces, ANodesNamespaceIsMadeWithItAndThoseAboveToo) {
  Scene s;
  EXPECT_THAT(s.namespaces(), IsEmpty());
  const NodeId wrist = s.create_node("transform", "char:arm:wrist");
  s.create_node("time", "shot:time1");
  EXPECT_THAT(s.namespaces(), ElementsAre("char", "char:arm", "shot"));
  s.rename(wrist, "other:deep:wrist");
  EXPECT_THAT(s.namespaces(), ElementsAre("char", "char:arm", "other", "other:deep", "shot"));
  EXPECT_TRUE(s.has_namespace("") && s.has_namespace("other:deep"));
  EXPECT_FALSE(s.has_namespace("deep"));
}

TEST(SceneNamespaces, ANamespaceOutlivesItsNodes) {
  Scene s;
  s.delete_node(s.create_node("transform", "char:wrist"));
  EXPECT_THAT(s.namespaces(), ElementsAre("char"));
}

TEST(SceneNamespaces, ANamespaceIsMadeWithThoseAboveItAndOfLegalCharacters) {
  Scene s;
  s.add_namespace("a:b c:1d");
  s.add_namespace("a");
  EXPECT_THAT(s.namespaces(), ElementsAre("a", "a:b_c", "a:b_c:_d"));
}

TEST(SceneNamespaces, OnlyAnEmptyOneThatIsNotCurrentCanBeRemoved) {
  Scene s;
  const NodeId node = s.create_node("transform", "a:b:x");
  s.add_namespace("c");
  s.add_namespace("a2");
  s.set_current_namespace("c");
  const auto removal_of = [&](std::string_view name) { return text_of_failure([&] { s.remove_namespace(name); }); };
  EXPECT_EQ(removal_of("a"), "The namespace 'a' is not empty and cannot be removed.");
  EXPECT_EQ(removal_of("a:b"), "The namespace 'a:b' is not empty and cannot be removed.");
  EXPECT_EQ(removal_of("c"), "The namespace 'c' is current and cannot be removed.");
  EXPECT_EQ(removal_of("b"), "No namespace matches name: 'b'.");
  EXPECT_EQ(removal_of(""), "No namespace matches name: ''.");
  EXPECT_THAT(s.namespaces(), ElementsAre("a", "a2", "a:b", "c"));
  s.delete_node(node);
  s.remove_namespace("a:b");
  s.remove_namespace("a");
  EXPECT_THAT(s.namespaces(), ElementsAre("a2", "c"));
}

TEST(SceneNamespaces, TheCurrentOneMustBeThere) {
  Scene s;
  EXPECT_EQ(s.current_namespace(), "");
  EXPECT_EQ(text_of_failure([&] { s.set_current_namespace("a"); }), "No namespace matches name: 'a'.");
  s.add_namespace("a");
  s.set_current_namespace("a");
  EXPECT_EQ(s.current_namespace(), "a");
  s.set_current_namespace("");
  EXPECT_EQ(s.current_namespace(), "");
}

TEST(SceneNamespaces, NodesAreInTheNamespaceOfTheirNameAlone) {
  Scene s;
  const NodeId x = s.create_node("transform", "x"), ax = s.create_node("transform", "a:x", x);
  const NodeId ay = s.create_node("transform", "a:y", ax), abx = s.create_node("transform", "a:b:x");
  EXPECT_THAT(s.nodes_in_namespace(""), ElementsAre(x));
  EXPECT_THAT(s.nodes_in_namespace("a"), ElementsAre(ax, ay));
  EXPECT_THAT(s.nodes_in_namespace("a:b"), ElementsAre(abx));
}

TEST(SceneNamespaces, ANewNodeIsWhereItsNameSaysElseInTheCurrentOne) {
  Scene s;
  s.add_namespace("a");
  EXPECT_EQ(s.name_for_new("x"), "x");
  s.set_current_namespace("a");
  EXPECT_EQ(s.name_for_new("x"), "a:x");
  EXPECT_EQ(s.name_for_new(":x"), "x");
  EXPECT_EQ(s.name_for_new("b:x"), "b:x");
  EXPECT_EQ(s.name_for_new(":b:c:x"), "b:c:x");
  EXPECT_EQ(s.name_for_new(""), "");
}

TEST(SceneNamespaces, DefaultNamesAreInTheCurrentOneAndGivenNamesAreNot) {
  Scene s;
  s.add_namespace("a");
  s.set_current_namespace("a");
  EXPECT_EQ(s.short_name(s.create_node("joint", "")), "a:joint1");
  EXPECT_EQ(s.short_name(s.create_node("joint", "")), "a:joint2");
  EXPECT_EQ(s.short_name(s.create_node("joint", "x")), "x");
  const NodeId shape = s.create_node("mesh", "b:xShape");
  EXPECT_EQ(s.long_name(shape), "|a:polySurface1|b:xShape");
  EXPECT_EQ(s.long_name(s.create_node("mesh", "")), "|a:polySurface2|a:polySurfaceShape2");
}

TEST(SceneNamespaces, ARelativeNamespaceOfANewNameIsLookedUpBelowTheCurrentOne) {
  Scene s;
  for (const char* name : {"nsA", "nsB", "nsA:inner"}) s.add_namespace(name);
  EXPECT_EQ(renamed(s, "nsB:sphere2"), "nsB:sphere2");
  EXPECT_EQ(renamed(s, "nsC:sphere2"), "sphere2*");
  s.set_current_namespace("nsA");
  EXPECT_EQ(renamed(s, "nsB:sphere3"), "nsA:sphere3*");
  EXPECT_EQ(renamed(s, "inner:sphere3"), "nsA:inner:sphere3");
  EXPECT_EQ(renamed(s, "sphere3"), "nsA:sphere3");
  EXPECT_EQ(renamed(s, ":sphere3"), "sphere3");
  s.set_current_namespace("nsB");
  EXPECT_EQ(renamed(s, ":nsC:sphere4"), "nsC:sphere4");
}

TEST(SceneNamespaces, ByTheOtherReadingARelativeOneNeverCounts) {
  Scene s;
  for (const char* name : {"nsA", "nsB"}) s.add_namespace(name);
  EXPECT_EQ(renamed(s, "nsB:sphere2", false), "sphere2");
  EXPECT_EQ(renamed(s, ":nsC:sphere2", false), "nsC:sphere2");
  s.set_current_namespace("nsA");
  EXPECT_EQ(renamed(s, "nsB:sphere2", false), "nsA:sphere2");
}

TEST(SceneNamespaces, ANewNameNeedsMoreThanANamespace) {
  Scene s;
  for (const char* name : {"", ":", "a:", ":a:"})
    EXPECT_EQ(text_of_failure([&] { s.name_for_renamed(name); }), "New name has no legal characters.") << name;
}

}  // namespace
}  // namespace vantorelix::standalone
