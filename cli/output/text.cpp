#include "cli/output/text.h"

#include <array>
#include <charconv>
#include <cmath>

namespace vantorelix::cli {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// Length of the valid UTF-8 sequence at the start of `text`, 0 when there is none.
std::size_t sequence_length(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char first = byte(0);
  if (first < 0x80) return 1;
  const std::size_t length = first >= 0xC2 && first < 0xE0   ? 2
                             : first >= 0xE0 && first < 0xF0 ? 3
                             : first >= 0xF0 && first < 0xF5 ? 4
                                                             : 0;
  if (length == 0 || text.size() < length) return 0;
  for (std::size_t i = 1; i < length; ++i)
    if ((byte(i) & 0xC0) != 0x80) return 0;
  // Overlong forms, surrogates and what lies beyond the last code point.
  const unsigned char second = byte(1);
  if (first == 0xE0 && second < 0xA0) return 0;
  if (first == 0xED && second > 0x9F) return 0;
  if (first == 0xF0 && second < 0x90) return 0;
  if (first == 0xF4 && second > 0x8F) return 0;
  return length;
}

}  // namespace

void append_number(std::string& out, double value) {
  std::array<char, 32> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
  const std::string_view text(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
  // Readers that take a number without a point for an integer would lose this sign.
  out += text == "-0" ? std::string_view("-0.0") : text;
}

std::string number(double value) {
  std::string out;
  append_number(out, value);
  return out;
}

std::string fixed(double value, int digits) {
  std::array<char, 352> buffer;
  const auto end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed, digits).ptr;
  std::string text(buffer.data(), end);
  if (text.find('.') != std::string::npos) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
  }
  return text == "-0" ? "0" : text;
}

std::string readable(double value, int digits) {
  if (!std::isfinite(value)) return std::isnan(value) ? "nan" : (value > 0 ? "inf" : "-inf");
  const double size = std::abs(value);
  if (size != 0.0 && (size >= 1e9 || size < 1e-4)) {
    std::array<char, 40> buffer;
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::scientific, digits - 1)
            .ptr;
    return {buffer.data(), end};
  }
  const int whole = size < 1.0 ? (size == 0.0 ? 1 : static_cast<int>(std::floor(std::log10(size))) + 1)
                               : static_cast<int>(std::log10(size)) + 1;
  return fixed(value, whole >= digits ? 0 : digits - whole);
}

std::string valid_utf8(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = sequence_length(text);
    out += length == 0 ? kReplacement : text.substr(0, length);
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return out;
}

std::string json_text(std::string_view text) {
  static constexpr char kHex[] = "0123456789abcdef";
  std::string out = "\"";
  for (const char c : valid_utf8(text)) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (static_cast<unsigned char>(c) < 0x20) {
      out += "\\u00";
      out += kHex[static_cast<unsigned char>(c) >> 4];
      out += kHex[static_cast<unsigned char>(c) & 15];
    } else {
      out += c;
    }
  }
  return out + '"';
}

std::string csv_text(std::string_view text) {
  const std::string valid = valid_utf8(text);
  const bool outer_blank = !valid.empty() && (valid.front() == ' ' || valid.back() == ' ');
  if (!outer_blank && valid.find_first_of(",\"\r\n") == std::string::npos) return valid;
  std::string out = "\"";
  for (const char c : valid) {
    if (c == '"') out += '"';
    out += c;
  }
  return out + '"';
}

std::string xml_text(std::string_view text) {
  std::string out;
  for (const char c : valid_utf8(text)) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\t':
      case '\n':
      case '\r':
        out += ' ';
        break;
      default:
        if (static_cast<unsigned char>(c) < 0x20)
          out += kReplacement;
        else
          out += c;
    }
  }
  return out;
}

std::size_t width(std::string_view text) {
  std::size_t n = 0;
  for (const char c : text)
    if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) ++n;
  return n;
}

std::string counted(std::size_t n, const std::string& noun) {
  return std::to_string(n) + " " + noun + (n == 1 ? "" : "s");
}

}  // namespace vantorelix::cli
