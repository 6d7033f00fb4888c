#include "base/json_writer.h"

#include <algorithm>
#include <cmath>

#include "base/utf8.h"

namespace vantorelix {

namespace {

constexpr std::array<std::string_view, 5> kUnsafeInScripts = {"<", ">", "&", "\xE2\x80\xA8", "\xE2\x80\xA9"};

// \uXXXX; `text` is one character below U+10000.
std::string escaped(std::string_view text) {
  static constexpr char kHex[] = "0123456789abcdef";
  const char32_t code = utf8_piece(text).code;
  std::string out = "\\u";
  for (const int shift : {12, 8, 4, 0}) out += kHex[code >> shift & 15];
  return out;
}

}  // namespace

void JsonWriter::key(std::string_view name) {
  separate();
  quoted(name);
  out_ << ": ";
  after_key_ = true;
}

void JsonWriter::value(std::string_view text) {
  begin();
  quoted(text);
}

void JsonWriter::value(double number) {
  if (!std::isfinite(number)) return word("null");
  begin();
  out_ << number;
}

void JsonWriter::word(const char* text) {
  begin();
  out_ << text;
}

void JsonWriter::begin() {
  if (!std::exchange(after_key_, false)) separate();
}

void JsonWriter::separate() { out_ << (std::exchange(empty_, false) ? layout_.first : layout_.next); }

void JsonWriter::quoted(std::string_view text) {
  const std::string valid = valid_utf8(text);
  std::string_view rest = valid;
  out_ << '"';
  while (!rest.empty()) {
    const std::string_view character = rest.substr(0, utf8_piece(rest).size);
    const char first = character.front();
    const bool unsafe = texts_ == Texts::script && std::find(kUnsafeInScripts.begin(), kUnsafeInScripts.end(),
                                                             character) != kUnsafeInScripts.end();
    if (first == '"' || first == '\\')
      out_ << '\\' << first;
    else if (unsafe || static_cast<unsigned char>(first) < 0x20)
      out_ << escaped(character);
    else
      out_ << character;
    rest.remove_prefix(character.size());
  }
  out_ << '"';
}

}  // namespace vantorelix
