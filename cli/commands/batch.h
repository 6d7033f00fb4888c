// Several scenes in one call of a command, each by a process of its own: the engine has one state a process, and a
// scene that ends its process ends no other.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

#include "cli/terminal/terminal.h"

namespace vantorelix::cli {

struct BatchOptions {
  std::optional<std::int64_t> jobs;
  bool keep_going = false;
  bool skip_existing = false;

  // Whether this is meant for any number of scenes, even when it is one.
  bool any() const { return jobs || keep_going || skip_existing; }
};
void add_batch_options(CLI::App& command, BatchOptions& options);

// One scene, and the files that come of it.
struct BatchScene {
  std::string scene;
  std::vector<std::string> outputs;
};

// The scenes with the outputs filled in. Throws UsageError where two scenes would write the same file.
std::vector<BatchScene> batch_of(const std::vector<std::string>& scenes, const std::vector<std::string>& outputs);

// Runs the command, which was read from the command line, over each scene, says on the terminal what each says, and
// prints a table. Ends with the first scene that fails, unless it is to keep going. Throws Failure when one failed,
// UsageError when that was the command line's fault, and PartlyDone when it was interrupted.
void run_batch(const CLI::App& command, const std::vector<BatchScene>& scenes, const BatchOptions& options,
               Terminal& terminal);

}  // namespace vantorelix::cli
