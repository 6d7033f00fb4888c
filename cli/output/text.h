// Texts as files want them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vantorelix::cli {

// Quoted where a comma, quote, line end or outer blank makes it necessary.
std::string csv_text(std::string_view text);
// For element content and attribute values; characters that no XML document may hold become U+FFFD.
std::string xml_text(std::string_view text);

// How many characters wide the text is, counting code points.
std::size_t width(std::string_view text);

}  // namespace vantorelix::cli
