// The second scene, beside which the trails of the first are laid.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "cli/args/options.h"
#include "cli/terminal/terminal.h"
#include "session/report.h"

namespace vantorelix::cli {

struct CompareOptions {
  std::string file, take, fps;

  // Whether there is a second scene: a file, or another take of the first.
  bool wanted() const { return !file.empty() || !take.empty(); }
};
void add_compare_options(CLI::App& command, CompareOptions& options);

// Makes the trails of the same objects in the second scene, over the same frames, and lays them beside the report's.
// Warns of objects that it lacks. Throws Failure when it has none of them, and UsageError for an option that its format
// has no use for.
void compare_with(const CompareOptions& options, const SceneOptions& first, session::TrailReport& report,
                  session::Figures figures, Terminal& terminal);

// Warns of the report's trails that may not be exact; `file` stands in front where it is not empty.
void warn_of_inexact(const session::TrailReport& report, const std::string& file, Terminal& terminal);

}  // namespace vantorelix::cli
