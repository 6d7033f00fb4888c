// What the commands have in common that take any number of scenes and write the files of each.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <vector>

#include "cli/commands/batch.h"
#include "cli/output/output_file.h"
#include "cli/terminal/terminal.h"

namespace vantorelix::cli {

struct SceneOutputs {
  std::vector<std::string> scenes;
  std::vector<std::string> outputs;  // may hold {stem} and its like
  BatchOptions batch;
};

// Runs `one` for the one scene, with its outputs filled in, or the command over all of them as a batch. Throws
// UsageError where an output has none of the extensions.
void for_each_scene(const CLI::App& command, SceneOutputs options, const std::vector<std::string>& extensions,
                    Terminal& terminal,
                    const std::function<void(const std::string& scene, const std::vector<std::string>& outputs)>& one);

// Has `write` write each of the outputs; they appear together. Says so of each, with the number of trails in it.
void write_outputs(const std::vector<std::string>& outputs, std::size_t trails, Terminal& terminal,
                   const std::function<void(OutputFile&)>& write);

// Prints a table, with its heading in bold.
void print_table(const std::string& table, const Terminal& terminal);

}  // namespace vantorelix::cli
