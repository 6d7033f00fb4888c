#include "cli/output/text.h"

#include "base/utf8.h"

namespace vantorelix::cli {

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
          out += kReplacementCharacter;
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

}  // namespace vantorelix::cli
