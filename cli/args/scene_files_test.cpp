#include "cli/args/scene_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace vantorelix::cli {
namespace {

using testing::ElementsAre;

TEST(SceneFiles, ANameWithStarsStandsForTheFilesThatMatchInOrder) {
  const support::TemporaryFolder folder;
  for (const char* name : {"b.bvh", "a.bvh", "c.ma", ".hidden.bvh"}) folder.write(name, "");
  const std::string in = folder / "";
  EXPECT_THAT(scene_files({in + "*.bvh", in + "?.ma"}), ElementsAre(in + "a.bvh", in + "b.bvh", in + "c.ma"));
}

TEST(SceneFiles, AFileThatIsCalledLikeAPatternIsThatFileAlone) {
#ifdef _WIN32
  GTEST_SKIP() << "no name has such characters there";
#endif
  const support::TemporaryFolder folder;
  for (const char* name : {"[1]?.bvh", "[1]2.bvh"}) folder.write(name, "");
  const std::string in = folder / "";
  EXPECT_THAT(scene_files({in + "[1]?.bvh"}), ElementsAre(in + "[1]?.bvh"));
}

TEST(SceneFiles, ANameThatMatchesNothingStaysForTheErrorToName) {
  EXPECT_THAT(scene_files({"no/such/*.bvh", "walk.bvh"}), ElementsAre("no/such/*.bvh", "walk.bvh"));
}

}  // namespace
}  // namespace vantorelix::cli
