// Completion scripts for shells, made from the command line that the program itself reads.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace vantorelix::cli {

// `shell`: bash, zsh or fish.
std::string completion_script(const CLI::App& program, const std::string& shell);

}  // namespace vantorelix::cli
