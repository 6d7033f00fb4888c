#include "base/paths.h"

#include <gtest/gtest.h>

namespace vantorelix::paths {
namespace {

TEST(Join, PutsOneSeparatorBetweenHeadAndTail) {
  EXPECT_EQ(join("/a", "b", kPosix), "/a/b");
  EXPECT_EQ(join("/a/", "b", kPosix), "/a/b");
  EXPECT_EQ(join("C:\\a", "b", kWindows), "C:\\a\\b");
  EXPECT_EQ(join("C:/a/", "b", kWindows), "C:/a/b");
}

TEST(Join, AnEmptyHeadGivesTheTailAndAnEmptyTailASeparator) {
  EXPECT_EQ(join("", "b", kPosix), "b");
  EXPECT_EQ(join("/a", "", kPosix), "/a/");
  EXPECT_EQ(join("/a", "", kWindows), "/a\\");
}

TEST(Join, AnAbsoluteTailReplacesTheHead) {
  EXPECT_EQ(join("/a", "/b", kPosix), "/b");
  EXPECT_EQ(join("C:\\a", "D:\\b", kWindows), "D:\\b");
}

TEST(Join, OnWindowsARootedTailKeepsTheDriveAndAnotherDriveReplacesIt) {
  EXPECT_EQ(join("C:\\a", "\\b", kWindows), "C:\\b");
  EXPECT_EQ(join("C:\\a", "D:b", kWindows), "D:b");
  EXPECT_EQ(join("C:\\a", "c:b", kWindows), "c:\\a\\b");
  EXPECT_EQ(join("C:", "b", kWindows), "C:b");
  EXPECT_EQ(join("\\\\host\\share", "b", kWindows), "\\\\host\\share\\b");
}

TEST(DirectoryName, IsWhatStandsBeforeTheLastSeparator) {
  EXPECT_EQ(directory_name("/a/b", kPosix), "/a");
  EXPECT_EQ(directory_name("/a/b/", kPosix), "/a/b");
  EXPECT_EQ(directory_name("a", kPosix), "");
  EXPECT_EQ(directory_name("C:\\a\\b", kWindows), "C:\\a");
  EXPECT_EQ(directory_name("C:/a/b", kWindows), "C:/a");
  EXPECT_EQ(directory_name("C:a", kWindows), "C:");
}

TEST(DirectoryName, OfARootIsTheRoot) {
  EXPECT_EQ(directory_name("/a", kPosix), "/");
  EXPECT_EQ(directory_name("/", kPosix), "/");
  EXPECT_EQ(directory_name("//a", kPosix), "//");
  EXPECT_EQ(directory_name("C:\\a", kWindows), "C:\\");
  EXPECT_EQ(directory_name("\\\\host\\share\\a", kWindows), "\\\\host\\share\\");
  EXPECT_EQ(directory_name("\\\\host\\share", kWindows), "\\\\host\\share");
}

TEST(Normalised, DropsDotsAndDoubledSeparators) {
  EXPECT_EQ(normalised("/a//b/./c/../d/", kPosix), "/a/b/d");
  EXPECT_EQ(normalised("C:/a//b/../c", kWindows), "C:\\a\\c");
  EXPECT_EQ(normalised("//host/share/a", kWindows), "\\\\host\\share\\a");
}

TEST(Normalised, KeepsClimbingOnlyWhereNothingStandsBeforeIt) {
  EXPECT_EQ(normalised("../a", kPosix), "../a");
  EXPECT_EQ(normalised("../../a", kPosix), "../../a");
  EXPECT_EQ(normalised("a/../..", kPosix), "..");
  EXPECT_EQ(normalised("/..", kPosix), "/");
  EXPECT_EQ(normalised("C:\\..", kWindows), "C:\\");
  EXPECT_EQ(normalised("C:..\\a", kWindows), "C:..\\a");
}

TEST(Normalised, OfNothingIsTheCurrentFolder) {
  EXPECT_EQ(normalised("", kPosix), ".");
  EXPECT_EQ(normalised("a/..", kWindows), ".");
}

TEST(Normalised, TwoLeadingSlashesAreARootOfTheirOwnOnPosixAndThreeAreNot) {
  EXPECT_EQ(normalised("//a", kPosix), "//a");
  EXPECT_EQ(normalised("///a", kPosix), "/a");
}

TEST(Absolute, StartsFromTheCurrentFolder) {
  const auto current = std::filesystem::current_path().string();
  EXPECT_EQ(absolute("a/../b"), join(current, "b"));
  EXPECT_EQ(absolute(""), current);
  EXPECT_EQ(absolute(join(current, ".")), current);
}

TEST(Text, SlashesAndCaseChangeNothingElse) {
  EXPECT_EQ(forward_slashes("C:\\a/b\\"), "C:/a/b/");
  EXPECT_EQ(lower("C:\\Anna_9\xC3\x84"), "c:\\anna_9\xC3\x84");
}

}  // namespace
}  // namespace vantorelix::paths
