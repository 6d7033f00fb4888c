// The style sheet of a picture: classes, light and dark.
#pragma once

#include <string>

namespace vantorelix::cli {

// `theme`: "light", "dark", or "auto" for light with a dark variant where the reader prefers it.
std::string style_sheet(const std::string& theme);

}  // namespace vantorelix::cli
