#include "cli/args/placeholders.h"

#include <gtest/gtest.h>

namespace vantorelix::cli {
namespace {

TEST(Placeholders, AreTheNamesOfTheScene) {
  EXPECT_EQ(fill_in("out/{stem}.json", "shots/walk.v2.fbx"), "out/walk.v2.json");
  EXPECT_EQ(fill_in("{name}.{ext}.{stem}.csv", "walk.fbx"), "walk.fbx.fbx.walk.csv");
  EXPECT_EQ(fill_in("{stem}{stem}.svg", "walk"), "walkwalk.svg");
  EXPECT_EQ(fill_in("{ext}.svg", "walk"), ".svg");
}

TEST(Placeholders, LeaveOtherBracesAlone) {
  EXPECT_EQ(fill_in("{take}/{{stem}}{.json", "walk.fbx"), "{take}/{walk}{.json");
  EXPECT_EQ(fill_in("{stem}.json", "{name}.fbx"), "{name}.json") << "what a scene is called is not filled in again";
}

TEST(Placeholders, TellScenesApartOnlyByTheirNames) {
  EXPECT_TRUE(names_scene("{stem}.json"));
  EXPECT_TRUE(names_scene("{name}.json"));
  EXPECT_FALSE(names_scene("{ext}.json"));
  EXPECT_FALSE(names_scene("all.json"));
}

}  // namespace
}  // namespace vantorelix::cli
