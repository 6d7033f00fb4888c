#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/error.h"
#include "standalone/scene/scene.h"
#include "standalone/scene/test_description.h"

namespace vantorelix::standalone {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// What rename would make of a name, with an asterisk where it drops a namespace.
std::string renamed(const Scene& s, std::string_view name, bool relative_counts = true) {
  const NewName wanted = s.namespaces.name_for_renamed(name, relative_counts);
  return wanted.text + (wanted.dropped ? "*" : "");
}

TEST(SceneNamespaces, ANodesNamespaceIsMadeWithItAndThoseAboveToo) {
  Scene s;
  EXPECT_THAT(s.namespaces.all(), IsEmpty());
  const NodeId wrist = s.nodes.create("transform", "char:arm:wrist");
  s.nodes.create("time", "shot:time1");
  EXPECT_THAT(s.namespaces.all(), ElementsAre("char", "char:arm", "shot"));
  s.nodes.rename(wrist, "other:deep:wrist");
  EXPECT_THAT(s.namespaces.all(), ElementsAre("char", "char:arm", "other", "other:deep", "shot"));
  EXPECT_TRUE(s.namespaces.has("") && s.namespaces.has("other:deep"));
  EXPECT_FALSE(s.namespaces.has("deep"));
}

TEST(SceneNamespaces, ANamespaceOutlivesItsNodes) {
  Scene s;
  s.nodes.remove(s.nodes.create("transform", "char:wrist"));
  EXPECT_THAT(s.namespaces.all(), ElementsAre("char"));
}

TEST(SceneNamespaces, ANamespaceIsMadeWithThoseAboveItAndOfLegalCharacters) {
  Scene s;
  s.namespaces.add("a:b c:1d");
  s.namespaces.add("a");
  EXPECT_THAT(s.namespaces.all(), ElementsAre("a", "a:b_c", "a:b_c:_d"));
}

TEST(SceneNamespaces, OnlyAnEmptyOneThatIsNotCurrentCanBeRemoved) {
  Scene s;
  const NodeId node = s.nodes.create("transform", "a:b:x");
  s.namespaces.add("c");
  s.namespaces.add("a2");
  s.namespaces.set_current("c");
  const auto removal_of = [&](std::string_view name) { return text_of_failure([&] { s.namespaces.remove(name); }); };
  EXPECT_EQ(removal_of("a"), "The namespace 'a' is not empty and cannot be removed.");
  EXPECT_EQ(removal_of("a:b"), "The namespace 'a:b' is not empty and cannot be removed.");
  EXPECT_EQ(removal_of("c"), "The namespace 'c' is current and cannot be removed.");
  EXPECT_EQ(removal_of("b"), "No namespace matches name: 'b'.");
  EXPECT_EQ(removal_of(""), "No namespace matches name: ''.");
  EXPECT_THAT(s.namespaces.all(), ElementsAre("a", "a2", "a:b", "c"));
  s.nodes.remove(node);
  s.namespaces.remove("a:b");
  s.namespaces.remove("a");
  EXPECT_THAT(s.namespaces.all(), ElementsAre("a2", "c"));
}

TEST(SceneNamespaces, TheCurrentOneMustBeThere) {
  Scene s;
  EXPECT_EQ(s.namespaces.current(), "");
  EXPECT_EQ(text_of_failure([&] { s.namespaces.set_current("a"); }), "No namespace matches name: 'a'.");
  s.namespaces.add("a");
  s.namespaces.set_current("a");
  EXPECT_EQ(s.namespaces.current(), "a");
  s.namespaces.set_current("");
  EXPECT_EQ(s.namespaces.current(), "");
}

TEST(SceneNamespaces, NodesAreInTheNamespaceOfTheirNameAlone) {
  Scene s;
  const NodeId x = s.nodes.create("transform", "x"), ax = s.nodes.create("transform", "a:x", x);
  const NodeId ay = s.nodes.create("transform", "a:y", ax), abx = s.nodes.create("transform", "a:b:x");
  EXPECT_THAT(s.namespaces.nodes_in(""), ElementsAre(x));
  EXPECT_THAT(s.namespaces.nodes_in("a"), ElementsAre(ax, ay));
  EXPECT_THAT(s.namespaces.nodes_in("a:b"), ElementsAre(abx));
}

TEST(SceneNamespaces, ANewNodeIsWhereItsNameSaysElseInTheCurrentOne) {
  Scene s;
  s.namespaces.add("a");
  EXPECT_EQ(s.namespaces.name_for_new("x"), "x");
  s.namespaces.set_current("a");
  EXPECT_EQ(s.namespaces.name_for_new("x"), "a:x");
  EXPECT_EQ(s.namespaces.name_for_new(":x"), "x");
  EXPECT_EQ(s.namespaces.name_for_new("b:x"), "b:x");
  EXPECT_EQ(s.namespaces.name_for_new(":b:c:x"), "b:c:x");
  EXPECT_EQ(s.namespaces.name_for_new(""), "");
}

TEST(SceneNamespaces, DefaultNamesAreInTheCurrentOneAndGivenNamesAreNot) {
  Scene s;
  s.namespaces.add("a");
  s.namespaces.set_current("a");
  EXPECT_EQ(s.names.short_name(s.nodes.create("joint", "")), "a:joint1");
  EXPECT_EQ(s.names.short_name(s.nodes.create("joint", "")), "a:joint2");
  EXPECT_EQ(s.names.short_name(s.nodes.create("joint", "x")), "x");
  const NodeId shape = s.nodes.create("mesh", "b:xShape");
  EXPECT_EQ(s.names.long_name(shape), "|a:polySurface1|b:xShape");
  EXPECT_EQ(s.names.long_name(s.nodes.create("mesh", "")), "|a:polySurface2|a:polySurfaceShape2");
}

TEST(SceneNamespaces, ARelativeNamespaceOfANewNameIsLookedUpBelowTheCurrentOne) {
  Scene s;
  for (const char* name : {"nsA", "nsB", "nsA:inner"}) s.namespaces.add(name);
  EXPECT_EQ(renamed(s, "nsB:sphere2"), "nsB:sphere2");
  EXPECT_EQ(renamed(s, "nsC:sphere2"), "sphere2*");
  s.namespaces.set_current("nsA");
  EXPECT_EQ(renamed(s, "nsB:sphere3"), "nsA:sphere3*");
  EXPECT_EQ(renamed(s, "inner:sphere3"), "nsA:inner:sphere3");
  EXPECT_EQ(renamed(s, "sphere3"), "nsA:sphere3");
  EXPECT_EQ(renamed(s, ":sphere3"), "sphere3");
  s.namespaces.set_current("nsB");
  EXPECT_EQ(renamed(s, ":nsC:sphere4"), "nsC:sphere4");
}

TEST(SceneNamespaces, ByTheOtherReadingARelativeOneNeverCounts) {
  Scene s;
  for (const char* name : {"nsA", "nsB"}) s.namespaces.add(name);
  EXPECT_EQ(renamed(s, "nsB:sphere2", false), "sphere2");
  EXPECT_EQ(renamed(s, ":nsC:sphere2", false), "nsC:sphere2");
  s.namespaces.set_current("nsA");
  EXPECT_EQ(renamed(s, "nsB:sphere2", false), "nsA:sphere2");
}

TEST(SceneNamespaces, ANewNameNeedsMoreThanANamespace) {
  Scene s;
  for (const char* name : {"", ":", "a:", ":a:"})
    EXPECT_EQ(text_of_failure([&] { s.namespaces.name_for_renamed(name); }), "New name has no legal characters.")
        << name;
}

}  // namespace
}  // namespace vantorelix::standalone
