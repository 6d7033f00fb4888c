// Patterns of "*" (any bytes) and "?" (one byte).
#pragma once

#include <string_view>

namespace vantorelix {

// Whether the pattern stands for the whole text. Takes at most their lengths' product in steps.
bool matches(std::string_view pattern, std::string_view text);

}  // namespace vantorelix
