// A browser as the one that turns a page into pixels.
#pragma once

#include <string>

namespace vantorelix::cli {

// The PNG file that a browser without a window makes of an SVG document of this size. Asks each browser that is found:
// those of the variable BROWSER whose name is that of Chromium, Chrome, Edge or Firefox, then those at the places where
// systems keep them. Throws Failure with the remedy when none does it. The browser gets a profile of its own, which
// goes away again, and what it reads is the document alone.
std::string png_of(const std::string& svg, int width, int height);

}  // namespace vantorelix::cli
