#include "base/pattern.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace vantorelix {
namespace {

TEST(Pattern, StandsForTheWholeText) {
  EXPECT_TRUE(matches("hip", "hip"));
  EXPECT_FALSE(matches("hip", "hips"));
  EXPECT_FALSE(matches("hips", "hip"));
  EXPECT_TRUE(matches("", ""));
  EXPECT_FALSE(matches("", "a"));
}

TEST(Pattern, AStarIsAnyBytesAndAQuestionMarkIsOne) {
  EXPECT_TRUE(matches("End Site*", "End Site of hip"));
  EXPECT_TRUE(matches("*_ctrl", "arm_ctrl_ctrl"));
  EXPECT_TRUE(matches("a*b?d", "axxbbcd"));
  EXPECT_TRUE(matches("**", ""));
  EXPECT_FALSE(matches("?", ""));
  EXPECT_FALSE(matches("a*b", "axxc"));
}

TEST(Pattern, OfManyStarsTakesNoLongerThanTheProductOfTheLengths) {
  std::string pattern;
  for (int i = 0; i < 200; ++i) pattern += "*a";
  EXPECT_FALSE(matches(pattern + "b", std::string(20000, 'a')));
}

TEST(Pattern, KnowsNeitherSetsNorAlternatives) {
  EXPECT_TRUE(matches("a[0]", "a[0]"));
  EXPECT_FALSE(matches("a[0]", "a0"));
  EXPECT_FALSE(matches("{a,b}", "a"));
}

// Whether the pattern stands for a path as "|arm|hand".
bool stands_for(const std::string& pattern, const std::string& path, bool ignore_case = false) {
  std::string rest = path, name;
  return PathPattern(pattern, ignore_case).matches([&]() -> std::optional<std::string_view> {
    const std::size_t bar = rest.rfind('|');
    if (bar == std::string::npos) return std::nullopt;
    name = rest.substr(bar + 1);
    rest.resize(bar);
    return name;
  });
}

std::string fault_of(const std::string& pattern) {
  try {
    const PathPattern understood(pattern);
    return "";
  } catch (const PatternError& error) {
    return error.what();
  }
}

TEST(PathPattern, WithoutABarInFrontStandsForTheEndOfAPath) {
  EXPECT_TRUE(stands_for("hand", "|arm|hand"));
  EXPECT_TRUE(stands_for("arm|hand", "|body|arm|hand"));
  EXPECT_TRUE(stands_for("|arm|hand", "|arm|hand"));
  EXPECT_FALSE(stands_for("|arm|hand", "|body|arm|hand"));
  EXPECT_FALSE(stands_for("rm|hand", "|arm|hand"));
  EXPECT_FALSE(stands_for("arm", "|arm|hand"));
  EXPECT_FALSE(stands_for("|hand", "|arm|hand"));
}

TEST(PathPattern, AStarAndAQuestionMarkStayWithinAName) {
  EXPECT_TRUE(stands_for("a*|h?nd", "|arm|hand"));
  EXPECT_TRUE(stands_for("|*|*", "|arm|hand"));
  EXPECT_FALSE(stands_for("|*", "|arm|hand"));
  EXPECT_FALSE(stands_for("|arm?hand", "|arm|hand"));
  EXPECT_FALSE(stands_for("|arm[!x]hand", "|arm|hand"));
  EXPECT_FALSE(stands_for("|arm[{-}]hand", "|arm|hand")) << "a range that holds the bar";
}

TEST(PathPattern, TwoStarsCrossBars) {
  EXPECT_TRUE(stands_for("|hips|**", "|hips|leg"));
  EXPECT_TRUE(stands_for("|hips|**", "|hips|leg|foot"));
  EXPECT_FALSE(stands_for("|hips|**", "|hips")) << "what is below it";
  EXPECT_FALSE(stands_for("|hips|**", "|hips2|leg"));
  EXPECT_TRUE(stands_for("hips|**", "|root|hips|leg|foot"));
  EXPECT_TRUE(stands_for("hips{,|**}", "|root|hips"));
  EXPECT_TRUE(stands_for("hips{,|**}", "|root|hips|leg"));
  EXPECT_TRUE(stands_for("|a**z", "|ab|c|yz"));
  EXPECT_TRUE(stands_for("**", "|a|b"));
}

TEST(PathPattern, TwoStarsBetweenBarsAreAnyNumberOfNamesOrNone) {
  EXPECT_TRUE(stands_for("|hips|**|toe", "|hips|toe"));
  EXPECT_TRUE(stands_for("|hips|**|toe", "|hips|leg|foot|toe"));
  EXPECT_FALSE(stands_for("|hips|**|toe", "|hips|leg|mistletoe"));
  EXPECT_FALSE(stands_for("|hips|**|toe", "|hipstoe"));
  EXPECT_TRUE(stands_for("**|toe", "|toe"));
  EXPECT_TRUE(stands_for("|**|toe", "|toe"));
  EXPECT_TRUE(stands_for("|a|**|b|**|c", "|a|x|b|y|z|c"));
  EXPECT_FALSE(stands_for("|a|**|b|**|c", "|a|x|y|z|c"));
}

TEST(PathPattern, BracketsAreOneCharacterOfASet) {
  EXPECT_TRUE(stands_for("finger[123]", "|finger2"));
  EXPECT_FALSE(stands_for("finger[123]", "|finger4"));
  EXPECT_TRUE(stands_for("finger[0-9][!a-c]", "|finger7d"));
  EXPECT_FALSE(stands_for("finger[0-9][!a-c]", "|finger7b"));
  EXPECT_FALSE(stands_for("finger[0-9]", "|finger"));
  EXPECT_TRUE(stands_for("a[]]b[-x]c[!]]", "|a]b-cd"));
  EXPECT_TRUE(stands_for("a[[]0]", "|a[0]")) << "what a bracket by itself is written as";
  EXPECT_TRUE(stands_for("[{*?,}]", "|*"));
  EXPECT_FALSE(stands_for("[{*?,}]", "|a"));
}

TEST(PathPattern, BracesAreOneOfSeveralPatterns) {
  for (const char* name : {"|left", "|right"}) EXPECT_TRUE(stands_for("{left,right}", name));
  EXPECT_FALSE(stands_for("{left,right}", "|leftright"));
  EXPECT_FALSE(stands_for("{left,right}x", "|x"));
  EXPECT_TRUE(stands_for("{l,r}_{arm*,leg?}", "|r_leg2"));
  EXPECT_TRUE(stands_for("{l,r}_{arm*,leg?}", "|l_arm"));
  EXPECT_FALSE(stands_for("{l,r}_{arm*,leg?}", "|m_arm"));
  EXPECT_TRUE(stands_for("a{,s}", "|a"));
  EXPECT_TRUE(stands_for("a{,s}", "|as"));
  EXPECT_TRUE(stands_for("{a{b,c},d}e", "|ace"));
  EXPECT_FALSE(stands_for("{a{b,c},d}e", "|ae"));
  EXPECT_TRUE(stands_for("{x|a,|b}", "|x|a"));
  EXPECT_TRUE(stands_for("{x|a,|b}", "|b"));
  EXPECT_FALSE(stands_for("{x|a,|b}", "|c|b"));
  EXPECT_TRUE(stands_for("{a}", "|a"));
  EXPECT_TRUE(stands_for("a,b", "|a,b")) << "a comma outside of braces";
}

TEST(PathPattern, CountsCharactersOfUtf8AndBytesThatAreNone) {
  EXPECT_TRUE(stands_for("F\xC3\xBC?e",
                         "|F\xC3\xBC\xC3\x9F"
                         "e"));
  EXPECT_TRUE(stands_for("[\xC3\xA4-\xC3\xBC]", "|\xC3\xB6"));
  EXPECT_FALSE(stands_for("??", "|\xC3\xB6"));
  EXPECT_TRUE(stands_for("a?\xFE", "|a\xFF\xFE"));
}

TEST(PathPattern, MayIgnoreTheCaseOfAsciiLetters) {
  EXPECT_TRUE(stands_for("*HAND", "|LeftHand", true));
  EXPECT_FALSE(stands_for("*HAND", "|LeftHand"));
  EXPECT_TRUE(stands_for("[a-c]x", "|BX", true));
  EXPECT_TRUE(stands_for("[A-C]x", "|bX", true));
  EXPECT_FALSE(stands_for("[!a-c]x", "|BX", true));
  EXPECT_FALSE(stands_for("\xC3\x84", "|\xC3\xA4", true));
}

TEST(PathPattern, SaysWhyATextIsNotAPattern) {
  EXPECT_EQ(fault_of("a[0"), "its '[' is not closed");
  EXPECT_EQ(fault_of("a[]"), "its '[' is not closed");
  EXPECT_EQ(fault_of("{a,{b}"), "its '{' is not closed");
  EXPECT_EQ(fault_of("a}b"), "its '}' closes nothing");
  EXPECT_EQ(fault_of("[z-a]"), "a range between '[' and ']' ends before it begins");
  EXPECT_EQ(fault_of("a]b"), "");
}

TEST(PathPattern, ALiteralTextStandsForItselfAlone) {
  std::optional<std::string_view> name = "a[0]";
  const auto once = [&] { return std::exchange(name, std::nullopt); };
  EXPECT_TRUE(PathPattern::literal("a[0]").matches(once));
  name = "a0";
  EXPECT_FALSE(PathPattern::literal("a[0]").matches(once));
  name = "A[0]";
  EXPECT_TRUE(PathPattern::literal("a[0]", true).matches(once));
}

TEST(PathPattern, ABarInANameBelongsToTheName) {
  std::optional<std::string_view> name;
  for (const char* pattern : {"a*", "a?b", "a|b", "a[|]b", "a[!x]b"}) {
    name = "a|b";
    EXPECT_TRUE(PathPattern(pattern).matches([&] { return std::exchange(name, std::nullopt); })) << pattern;
  }
}

TEST(PathPattern, OfAnyShapeTakesNoLongerThanTheProductOfTheLengths) {
  std::string braces, stars, nested;
  for (int i = 0; i < 300; ++i) braces += "{a,a{a,},**}", stars += "**a";
  for (int i = 0; i < 20000; ++i) nested += '{';
  nested += 'a' + std::string(20000, '}');
  const std::string path = '|' + std::string(3000, 'a');
  EXPECT_FALSE(stands_for(braces + 'b', path));
  EXPECT_FALSE(stands_for(stars + 'b', path));
  EXPECT_TRUE(stands_for(nested, "|a"));
}

}  // namespace
}  // namespace vantorelix
