// Bytes that should be text.
#pragma once

#include <string>

namespace vantorelix {

// `bytes` as UTF-8 text; each longest piece that cannot begin or continue a character becomes one U+FFFD.
std::string utf8_text(const std::string& bytes);

}  // namespace vantorelix
