// The notices of the libraries of others in the program.
#pragma once

#include <string_view>
#include <vector>

namespace vantorelix::cli {

struct Licence {
  std::string_view library;
  std::string_view notice;  // with its line ends
};

// Of every library that is linked or embedded; the build makes it (cmake/licences.cmake).
const std::vector<Licence>& licences();

}  // namespace vantorelix::cli
