#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/error.h"
#include "standalone/scene/names/name_table.h"
#include "standalone/scene/scene.h"

namespace vantorelix::standalone {
namespace {

using testing::ElementsAre;

std::string text_of_failure(const std::function<void()>& f) {
  try {
    f();
  } catch (const host::Error& error) {
    return error.what();
  }
  return "nothing was thrown";
}

TEST(SceneNames, IllegalCharactersBecomeUnderscores) {
  Scene s;
  EXPECT_EQ(s.short_name(s.create_node("transform", "a b|c.d")), "a_b_c_d");
  EXPECT_EQ(s.short_name(s.create_node("transform", "1st")), "_st");
  EXPECT_EQ(s.short_name(s.create_node("transform", "rig:arm_2")), "rig:arm_2");
}

TEST(SceneNames, AClashRaisesTheNumberAtTheEnd) {
  Scene s;
  std::vector<std::string> got;
  for (const char* name : {"ball", "ball", "ball", "ball7", "ball7", "arm09", "arm09", "arm09"})
    got.emplace_back(s.short_name(s.create_node("transform", name)));
  EXPECT_THAT(got, ElementsAre("ball", "ball1", "ball2", "ball7", "ball8", "arm09", "arm10", "arm11"));
}

TEST(SceneNames, ANumberThatBecameFreeIsGivenAgain) {
  Scene s;
  for (int i = 0; i < 10; ++i) s.create_node("transform", "a");
  s.delete_node(s.find("a4"));
  EXPECT_EQ(s.short_name(s.create_node("transform", "a")), "a4");
  EXPECT_EQ(s.short_name(s.create_node("transform", "a")), "a10");
}

TEST(SceneNames, OnlySiblingsMustDiffer) {
  Scene s;
  const NodeId a = s.create_node("transform", "a"), b = s.create_node("transform", "b");
  const NodeId x = s.create_node("transform", "x", a), y = s.create_node("transform", "x", b);
  EXPECT_EQ(s.short_name(y), "x");
  EXPECT_EQ(s.long_name(x), "|a|x");
  EXPECT_EQ(s.unique_name(x), "a|x");
  EXPECT_EQ(s.unique_name(y), "b|x");
  EXPECT_EQ(s.unique_name(a), "a");
}

TEST(SceneNames, TheShortestUniquePathGoesUpAsFarAsItMust) {
  Scene s;
  const NodeId a = s.create_node("transform", "a"), inner = s.create_node("transform", "a", a);
  const NodeId x = s.create_node("transform", "x", inner), top = s.create_node("transform", "x");
  EXPECT_EQ(s.unique_name(inner), "a|a");
  EXPECT_EQ(s.unique_name(a), "|a");
  EXPECT_EQ(s.unique_name(top), "|x");
  EXPECT_EQ(s.unique_name(x), "a|x");
  for (const NodeId n : s.nodes()) EXPECT_EQ(s.find(s.unique_name(n)), n);
}

TEST(SceneNames, OutsideTheDagNamesAreUniqueEverywhere) {
  Scene s;
  const NodeId a = s.create_node("transform", "a");
  s.create_node("transform", "x", a);
  EXPECT_EQ(s.short_name(s.create_node("time", "x")), "x1");
  EXPECT_EQ(s.short_name(s.create_node("transform", "x1", a)), "x2");
}

TEST(SceneNames, FindTakesShortPartialAndFullPaths) {
  Scene s;
  const NodeId a = s.create_node("transform", "a"), b = s.create_node("transform", "b", a);
  const NodeId x = s.create_node("transform", "x", b);
  for (const char* name : {"x", "b|x", "a|b|x", "|a|b|x", ":x"}) EXPECT_EQ(s.find(name), x) << name;
  for (const char* name : {"", "y", "a|x", "|b|x", "|x", "x|", "|a|b|x|x", "|"})
    EXPECT_EQ(s.find(name), kNoNode) << name;
}

TEST(SceneNames, AnAmbiguousNameIsAnErrorAndAMissingOneToo) {
  Scene s;
  const NodeId a = s.create_node("transform", "a"), b = s.create_node("transform", "b");
  s.create_node("transform", "x", a);
  s.create_node("transform", "x", b);
  EXPECT_EQ(text_of_failure([&] { s.find("x"); }), "More than one object matches name: x");
  EXPECT_EQ(text_of_failure([&] { s.require("nobody"); }), "No object matches name: nobody");
}

TEST(SceneNames, PatternsMatchWithinOneComponent) {
  Scene s;
  const NodeId a = s.create_node("transform", "arm"), b = s.create_node("transform", "arm_2", a);
  const NodeId c = s.create_node("transform", "leg", b);
  EXPECT_THAT(s.match("arm*"), ElementsAre(a, b));
  EXPECT_THAT(s.match("arm_?"), ElementsAre(b));
  EXPECT_THAT(s.match("arm*|leg"), ElementsAre(c));
  EXPECT_THAT(s.match("|*"), ElementsAre(a));
  EXPECT_THAT(s.match("|*|*"), ElementsAre(b));
  EXPECT_THAT(s.match("leg"), ElementsAre(c));
  EXPECT_TRUE(s.match("arm|leg").empty());
}

TEST(SceneNames, RenamingATransformTakesItsShapeAlong) {
  Scene s;
  const NodeId t = s.create_node("transform", "ball"), shape = s.create_node("mesh", "ballShape", t);
  EXPECT_EQ(s.rename(t, "globe"), "globe");
  EXPECT_EQ(s.short_name(shape), "globeShape");
  s.rename(shape, "other");
  s.rename(t, "moon");
  EXPECT_EQ(s.short_name(shape), "other");
}

TEST(SceneNames, RenameGivesTheNameThatTheNodeGot) {
  Scene s;
  s.create_node("transform", "a");
  const NodeId b = s.create_node("transform", "b");
  EXPECT_EQ(s.rename(b, "a"), "a1");
  EXPECT_EQ(s.rename(b, "a1"), "a1");
  EXPECT_EQ(text_of_failure([&] { s.rename(b, ""); }), "New name has no legal characters.");
  s.lock_node(b, true);
  EXPECT_EQ(text_of_failure([&] { s.rename(b, "c"); }), "Node 'a1' is locked and cannot be renamed.");
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
  const NodeId a = s.create_node("transform", "a"), b = s.create_node("transform", "b");
  EXPECT_EQ(s.find("a"), a);
  s.rename(a, "c");
  EXPECT_EQ(s.find("a"), kNoNode);
  s.rename(b, "a");
  EXPECT_EQ(s.find("a"), b);
  s.set_parent(b, a);
  EXPECT_EQ(s.find("|c|a"), b);
  const NodeId other = s.create_node("transform", "a");
  EXPECT_EQ(text_of_failure([&] { s.find("a"); }), "More than one object matches name: a");
  s.delete_node(b);
  EXPECT_EQ(s.find("a"), other);
  s.delete_node(other);
  EXPECT_EQ(s.find("a"), kNoNode);
}

TEST(SceneNames, EqualNamesInGreatNumbersAreNumberedOn) {
  Scene s;
  NodeId last = kNoNode;
  for (int i = 0; i < 40000; ++i) last = s.create_node("transform", "same");
  EXPECT_EQ(s.short_name(last), "same39999");
  for (const NodeId n : s.nodes()) s.delete_node(n);
  EXPECT_EQ(s.short_name(s.create_node("transform", "same")), "same");
}

}  // namespace
}  // namespace vantorelix::standalone
