// Texts and numbers as files want them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vantorelix::cli {

// Appends the shortest text that reads back to the same double, the sign of a zero included. Not for values that
// are not finite.
void append_number(std::string& out, double value);
std::string number(double value);
// With `digits` decimals, trailing zeros and a needless point removed; never "-0".
std::string fixed(double value, int digits);
// About `digits` significant digits, for people: "0.0123", "12.3", "12346", "1.2e+09".
std::string readable(double value, int digits = 4);

// The text with every byte that is no part of valid UTF-8 replaced by U+FFFD.
std::string valid_utf8(std::string_view text);
// Quoted and escaped, of valid UTF-8 whatever came in.
std::string json_text(std::string_view text);
// Quoted where a comma, quote, line end or outer blank makes it necessary.
std::string csv_text(std::string_view text);
// For element content and attribute values; characters that no XML document may hold become U+FFFD.
std::string xml_text(std::string_view text);

// How many characters wide the text is, counting code points.
std::size_t width(std::string_view text);
// "1 trail", "3 trails".
std::string counted(std::size_t n, const std::string& noun);

}  // namespace vantorelix::cli
