#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/error.h"
#include "standalone/scene/names/name_table.h"
#include "standalone/scene/scene.h"
#include "standalone/scene/test_description.h"

namespace vantorelix::standalone {
namespace {

using testing::ElementsAre;

TEST(SceneNames, IllegalCharactersBecomeUnderscores) {
  Scene s;
  EXPECT_EQ(s.names.short_name(s.nodes.create("transform", "a b|c.d")), "a_b_c_d");
  EXPECT_EQ(s.names.short_name(s.nodes.create("transform", "1st")), "_st");
  EXPECT_EQ(s.names.short_name(s.nodes.create("transform", "rig:arm_2")), "rig:arm_2");
}

TEST(SceneNames, AClashRaisesTheNumberAtTheEnd) {
  Scene s;
  std::vector<std::string> got;
  for (const char* name : {"ball", "ball", "ball", "ball7", "ball7", "arm09", "arm09", "arm09"})
    got.emplace_back(s.names.short_name(s.nodes.create("transform", name)));
  EXPECT_THAT(got, ElementsAre("ball", "ball1", "ball2", "ball7", "ball8", "arm09", "arm10", "arm11"));
}

TEST(SceneNames, ANumberThatBecameFreeIsGivenAgain) {
  Scene s;
  for (int i = 0; i < 10; ++i) s.nodes.create("transform", "a");
  s.nodes.remove(s.names.find("a4"));
  EXPECT_EQ(s.names.short_name(s.nodes.create("transform", "a")), "a4");
  EXPECT_EQ(s.names.short_name(s.nodes.create("transform", "a")), "a10");
}

TEST(SceneNames, OnlySiblingsMustDiffer) {
  Scene s;
  const NodeId a = s.nodes.create("transform", "a"), b = s.nodes.create("transform", "b");
  const NodeId x = s.nodes.create("transform", "x", a), y = s.nodes.create("transform", "x", b);
  EXPECT_EQ(s.names.short_name(y), "x");
  EXPECT_EQ(s.names.long_name(x), "|a|x");
  EXPECT_EQ(s.names.unique_name(x), "a|x");
  EXPECT_EQ(s.names.unique_name(y), "b|x");
  EXPECT_EQ(s.names.unique_name(a), "a");
}

TEST(SceneNames, TheShortestUniquePathGoesUpAsFarAsItMust) {
  Scene s;
  const NodeId a = s.nodes.create("transform", "a"), inner = s.nodes.create("transform", "a", a);
  const NodeId x = s.nodes.create("transform", "x", inner), top = s.nodes.create("transform", "x");
  EXPECT_EQ(s.names.unique_name(inner), "a|a");
  EXPECT_EQ(s.names.unique_name(a), "|a");
  EXPECT_EQ(s.names.unique_name(top), "|x");
  EXPECT_EQ(s.names.unique_name(x), "a|x");
  for (const NodeId n : s.nodes.all()) EXPECT_EQ(s.names.find(s.names.unique_name(n)), n);
}

TEST(SceneNames, OutsideTheDagNamesAreUniqueEverywhere) {
  Scene s;
  const NodeId a = s.nodes.create("transform", "a");
  s.nodes.create("transform", "x", a);
  EXPECT_EQ(s.names.short_name(s.nodes.create("time", "x")), "x1");
  EXPECT_EQ(s.names.short_name(s.nodes.create("transform", "x1", a)), "x2");
}

TEST(SceneNames, FindTakesShortPartialAndFullPaths) {
  Scene s;
  const NodeId a = s.nodes.create("transform", "a"), b = s.nodes.create("transform", "b", a);
  const NodeId x = s.nodes.create("transform", "x", b);
  for (const char* name : {"x", "b|x", "a|b|x", "|a|b|x", ":x"}) EXPECT_EQ(s.names.find(name), x) << name;
  for (const char* name : {"", "y", "a|x", "|b|x", "|x", "x|", "|a|b|x|x", "|"})
    EXPECT_EQ(s.names.find(name), kNoNode) << name;
}

TEST(SceneNames, AnAmbiguousNameIsAnErrorAndAMissingOneToo) {
  Scene s;
  const NodeId a = s.nodes.create("transform", "a"), b = s.nodes.create("transform", "b");
  s.nodes.create("transform", "x", a);
  s.nodes.create("transform", "x", b);
  EXPECT_EQ(text_of_failure([&] { s.names.find("x"); }), "More than one object matches name: x");
  EXPECT_EQ(text_of_failure([&] { s.names.require("nobody"); }), "No object matches name: nobody");
}

TEST(SceneNames, PatternsMatchWithinOneComponent) {
  Scene s;
  const NodeId a = s.nodes.create("transform", "arm"), b = s.nodes.create("transform", "arm_2", a);
  const NodeId c = s.nodes.create("transform", "leg", b);
  EXPECT_THAT(s.names.match("arm*"), ElementsAre(a, b));
  EXPECT_THAT(s.names.match("arm_?"), ElementsAre(b));
  EXPECT_THAT(s.names.match("arm*|leg"), ElementsAre(c));
  EXPECT_THAT(s.names.match("|*"), ElementsAre(a));
  EXPECT_THAT(s.names.match("|*|*"), ElementsAre(b));
  EXPECT_THAT(s.names.match("leg"), ElementsAre(c));
  EXPECT_TRUE(s.names.match("arm|leg").empty());
}

TEST(SceneNames, RenamingATransformTakesItsShapeAlong) {
  Scene s;
  const NodeId t = s.nodes.create("transform", "ball"), shape = s.nodes.create("mesh", "ballShape", t);
  EXPECT_EQ(s.nodes.rename(t, "globe"), "globe");
  EXPECT_EQ(s.names.short_name(shape), "globeShape");
  s.nodes.rename(shape, "other");
  s.nodes.rename(t, "moon");
  EXPECT_EQ(s.names.short_name(shape), "other");
}

TEST(SceneNames, RenameGivesTheNameThatTheNodeGot) {
  Scene s;
  s.nodes.create("transform", "a");
  const NodeId b = s.nodes.create("transform", "b");
  EXPECT_EQ(s.nodes.rename(b, "a"), "a1");
  EXPECT_EQ(s.nodes.rename(b, "a1"), "a1");
  EXPECT_EQ(text_of_failure([&] { s.nodes.rename(b, ""); }), "New name has no legal characters.");
  s.nodes.lock(b, true);
  EXPECT_EQ(text_of_failure([&] { s.nodes.rename(b, "c"); }), "Node 'a1' is locked and cannot be renamed.");
}

TEST(NameTable, HandsOutTheSameNamesWithManyClashesAsByCounting) {
  NameTable table;
  std::vector<NodeId> live;
  NodeId next = 1;
  std::uint32_t random = 1;
  for (int i = 0; i < 3000; ++i) {
    random = random * 1664525u + 1013904223u;
    if (random >> 30 == 0 && !live.empty()) {
      const std::size_t victim = (random >> 8) % live.size();
      for (const char* stem : {"n", "n0", "n3"})
        for (int k = -1; k < 3000; ++k) {
          const auto name = table.find(stem + (k < 0 ? std::string() : std::to_string(k)));
          if (name == NameTable::kNone || table.in_scope(kWorld, name) != live[victim]) continue;
          table.remove(kWorld, name, live[victim]);
          k = 3000;
        }
      live.erase(live.begin() + static_cast<std::ptrdiff_t>(victim));
      continue;
    }
    const bool three = (random >> 20 & 1) != 0;
    std::string wanted = three ? "n3" : "n";
    if (table.taken(kWorld, wanted)) {
      int k = three ? 4 : 1;
      while (table.taken(kWorld, "n" + std::to_string(k))) ++k;
      wanted = "n" + std::to_string(k);
    }
    ASSERT_EQ(table.free_name(kWorld, three ? "n3" : "n"), wanted);
    table.add(kWorld, wanted, next);
    live.push_back(next++);
  }
}

TEST(SceneNames, AFoundNameIsLookedUpAnewOnceItBelongsToAnotherNode) {
  Scene s;
  const NodeId a = s.nodes.create("transform", "a"), b = s.nodes.create("transform", "b");
  EXPECT_EQ(s.names.find("a"), a);
  s.nodes.rename(a, "c");
  EXPECT_EQ(s.names.find("a"), kNoNode);
  s.nodes.rename(b, "a");
  EXPECT_EQ(s.names.find("a"), b);
  s.nodes.set_parent(b, a);
  EXPECT_EQ(s.names.find("|c|a"), b);
  const NodeId other = s.nodes.create("transform", "a");
  EXPECT_EQ(text_of_failure([&] { s.names.find("a"); }), "More than one object matches name: a");
  s.nodes.remove(b);
  EXPECT_EQ(s.names.find("a"), other);
  s.nodes.remove(other);
  EXPECT_EQ(s.names.find("a"), kNoNode);
}

TEST(SceneNames, EqualNamesInGreatNumbersAreNumberedOn) {
  Scene s;
  NodeId last = kNoNode;
  for (int i = 0; i < 40000; ++i) last = s.nodes.create("transform", "same");
  EXPECT_EQ(s.names.short_name(last), "same39999");
  for (const NodeId n : s.nodes.all()) s.nodes.remove(n);
  EXPECT_EQ(s.names.short_name(s.nodes.create("transform", "same")), "same");
}

}  // namespace
}  // namespace vantorelix::standalone
