#include "base/utf8.h"

#include <gtest/gtest.h>

namespace vantorelix {
namespace {

const std::string kReplaced = "\xEF\xBF\xBD";

TEST(Utf8Text, KeepsWhatIsText) {
  EXPECT_EQ(utf8_text(""), "");
  EXPECT_EQ(utf8_text("ab"), "ab");
  EXPECT_EQ(utf8_text("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"), "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
}

TEST(Utf8Text, ReplacesAByteThatBeginsNoCharacter) {
  EXPECT_EQ(utf8_text("\x80"), kReplaced);
  EXPECT_EQ(utf8_text("\xFF"
                      "A"),
            kReplaced + "A");
}

TEST(Utf8Text, ReplacesACharacterCutShortAsOnePiece) {
  EXPECT_EQ(utf8_text("\xE2\x82"), kReplaced);
  EXPECT_EQ(utf8_text("\xE2\x82"
                      "a"),
            kReplaced + "a");
  EXPECT_EQ(utf8_text("\xF0\x9F\x98"), kReplaced);
}

TEST(Utf8Text, ReplacesOverlongFormsSurrogatesAndWhatLiesBeyondUnicodeByteByByte) {
  EXPECT_EQ(utf8_text("\xC0\xAF"), kReplaced + kReplaced);
  EXPECT_EQ(utf8_text("\xED\xA0\x80"), kReplaced + kReplaced + kReplaced);
  EXPECT_EQ(utf8_text("\xF4\x90\x80\x80"), kReplaced + kReplaced + kReplaced + kReplaced);
}

}  // namespace
}  // namespace vantorelix
