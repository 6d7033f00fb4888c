// The page that shows trails (viewer/), as it lies in the program.
#pragma once

#include <string_view>
#include <vector>

namespace vantorelix::cli {

// One HTML document, cut into pieces. They are cut before and after kPagePlace, which is one piece of its own.
const std::vector<std::string_view>& page();

// Stands for the data, once.
inline constexpr std::string_view kPagePlace = "<!--trails-->";

}  // namespace vantorelix::cli
