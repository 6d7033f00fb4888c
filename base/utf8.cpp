#include "base/utf8.h"

namespace vantorelix {

namespace {

struct Range {
  unsigned char low;
  unsigned char high;
};

// How many bytes follow a lead byte, and what the first of them may be: that excludes overlong forms, surrogates and
// anything past U+10FFFF. Ranges 0x80..0xBF serve all later bytes.
struct Lead {
  std::size_t following;
  Range second;
};

constexpr Range kContinuation{0x80, 0xBF};

Lead lead_of(unsigned char byte) {
  if (byte >= 0xC2 && byte <= 0xDF) return {1, kContinuation};
  if (byte == 0xE0) return {2, {0xA0, 0xBF}};
  if (byte == 0xED) return {2, {0x80, 0x9F}};
  if (byte >= 0xE1 && byte <= 0xEF) return {2, kContinuation};
  if (byte == 0xF0) return {3, {0x90, 0xBF}};
  if (byte >= 0xF1 && byte <= 0xF3) return {3, kContinuation};
  if (byte == 0xF4) return {3, {0x80, 0x8F}};
  return {0, kContinuation};
}

std::string replaced(std::string_view bytes, bool each_byte) {
  std::string text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    const Utf8Piece piece = utf8_piece(bytes);
    if (piece.valid) text += bytes.substr(0, piece.size);
    for (std::size_t n = piece.valid ? 0 : each_byte ? piece.size : 1; n > 0; --n) text += kReplacementCharacter;
    bytes.remove_prefix(piece.size);
  }
  return text;
}

}  // namespace

Utf8Piece utf8_piece(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char first = byte(0);
  if (first < 0x80) return {true, first, 1};
  const Lead lead = lead_of(first);
  Utf8Piece piece{false, first & (0x3Fu >> lead.following), 1};
  Range expected = lead.second;
  for (; piece.size <= lead.following && piece.size < text.size(); ++piece.size, expected = kContinuation) {
    const unsigned char next = byte(piece.size);
    if (next < expected.low || next > expected.high) return piece;
    piece.code = piece.code << 6 | (next & 0x3Fu);
  }
  piece.valid = lead.following != 0 && piece.size == lead.following + 1;
  return piece;
}

std::string utf8_text(std::string_view bytes) { return replaced(bytes, false); }
std::string valid_utf8(std::string_view bytes) { return replaced(bytes, true); }

}  // namespace vantorelix
