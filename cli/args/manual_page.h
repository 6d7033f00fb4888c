// The manual page of the program, made from the same help as --help.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace vantorelix::cli {

// In the format of man(7), for section 1. `version` is what stands at its foot.
std::string manual_page(const CLI::App& program, const std::string& version);

}  // namespace vantorelix::cli
