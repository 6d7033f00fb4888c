#include "base/utf8.h"

#include <cstddef>

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

bool within(char c, Range range) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= range.low && byte <= range.high;
}

}  // namespace

std::string utf8_text(const std::string& bytes) {
  std::string text;
  std::size_t i = 0;
  while (i < bytes.size()) {
    const auto first = static_cast<unsigned char>(bytes[i]);
    const Lead lead = lead_of(first);
    std::size_t length = 1;
    Range expected = lead.second;
    while (length <= lead.following && i + length < bytes.size() && within(bytes[i + length], expected)) {
      ++length;
      expected = kContinuation;
    }
    const bool whole = first < 0x80 || (lead.following > 0 && length == lead.following + 1);
    text += whole ? bytes.substr(i, length) : "\xEF\xBF\xBD";
    i += length;
  }
  return text;
}

}  // namespace vantorelix
