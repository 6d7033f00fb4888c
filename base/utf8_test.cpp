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

TEST(ValidUtf8, ReplacesEachByteOfACharacterCutShort) {
  EXPECT_EQ(valid_utf8("\xC3\xA9"), "\xC3\xA9");
  EXPECT_EQ(valid_utf8("\xF0\x9F\x98"
                       "a\xE9"),
            kReplaced + kReplaced + kReplaced + "a" + kReplaced);
}

TEST(Utf8Piece, TellsTheCharacterAndHowLongItIs) {
  const auto expect = [](std::string_view text, char32_t code, std::size_t size) {
    const Utf8Piece piece = utf8_piece(text);
    EXPECT_TRUE(piece.valid) << text;
    EXPECT_EQ(piece.code, code) << text;
    EXPECT_EQ(piece.size, size) << text;
  };
  expect("ab", U'a', 1);
  expect("\xC3\xA9x", 0xE9, 2);
  expect("\xE2\x82\xAC", 0x20AC, 3);
  expect("\xF0\x9F\x98\x80", 0x1F600, 4);
  expect("\xF4\x8F\xBF\xBF", 0x10FFFF, 4);
  EXPECT_FALSE(utf8_piece("\xE2\x82").valid);
  EXPECT_EQ(utf8_piece("\xE2\x82").size, 2u);
}

}  // namespace
}  // namespace vantorelix
