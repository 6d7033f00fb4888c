// The page that shows trails (viewer/), as it lies in the program.
#pragma once

#include <string_view>
#include <vector>

namespace vantorelix::cli {

// One HTML document, cut into pieces. They are cut before and after kPagePlace and page_policy(), which are pieces of
// their own.
const std::vector<std::string_view>& page();
// What the page says of itself that it may do.
std::string_view page_policy();

// Stands for the data, once.
inline constexpr std::string_view kPagePlace = "<!--trails-->";

// A live page has the engine in it, in these elements, before what else stands at kPagePlace. Empty in a program that
// was built without it.
const std::vector<std::string_view>& engine_blocks();
// What a live page may do.
std::string_view live_policy();

}  // namespace vantorelix::cli
