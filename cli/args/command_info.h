// What the commands and their options are, for what is made from it: completions of shells, the manual page.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace vantorelix::cli {

struct OptionInfo {
  std::vector<std::string> names;  // with their dashes
  std::string description;
  std::vector<std::string> choices;
  std::string type;  // what stands for its value in help; empty where it takes none
  bool takes_value;
  bool takes_file;
};

struct CommandInfo {
  std::string name;
  std::string description;
  std::vector<OptionInfo> options;
  std::vector<std::string> words;  // what its positional argument may be; empty: a file
  std::string argument;            // its positional argument's name; empty where it has none
  bool several = false;            // of these arguments
  std::string footer = {};         // what its help ends with
};

CommandInfo describe(const CLI::App& app);
// Of all commands of the program.
std::vector<CommandInfo> commands_of(const CLI::App& program);

}  // namespace vantorelix::cli
