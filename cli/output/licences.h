// The notices of the libraries of others in the program.
#pragma once

#include <string_view>
#include <vector>

namespace vantorelix::cli {

// Of every library that is linked or embedded, one after the other, with their line ends: the pieces make one text. The
// build makes it (cmake/licences.cmake).
const std::vector<std::string_view>& licences();

}  // namespace vantorelix::cli
