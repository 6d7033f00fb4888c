// Bytes that should be text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vantorelix {

// U+FFFD, which stands where bytes are not text.
inline constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";

// What a text begins with.
struct Utf8Piece {
  bool valid;        // a character; else bytes that cannot begin or continue one
  char32_t code;     // of the character
  std::size_t size;  // bytes, at least 1: of the character, or of the longest piece that could have begun one
};

// `text` is not empty.
Utf8Piece utf8_piece(std::string_view text);

// `bytes` as UTF-8 text; each longest piece that cannot begin or continue a character becomes one U+FFFD, as the
// scripting language has it.
std::string utf8_text(std::string_view bytes);
// The same, but each byte of such a piece becomes a U+FFFD of its own.
std::string valid_utf8(std::string_view bytes);

}  // namespace vantorelix
