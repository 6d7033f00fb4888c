// The commands of the program. Each adds itself to the command line and hands back what runs it.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>

#include "cli/args/options.h"
#include "cli/terminal/terminal.h"

namespace vantorelix::cli {

// Runs after the command line was read; throws on failure.
using Run = std::function<void(Terminal&)>;

struct Command {
  CLI::App* app;
  Run run;
};

Command add_trails(CLI::App& program);
Command add_measure(CLI::App& program);
Command add_view(CLI::App& program);
Command add_page(CLI::App& program);
Command add_info(CLI::App& program);
Command add_curves(CLI::App& program);
Command add_live(CLI::App& program);
Command add_completion(CLI::App& program);
Command add_manual(CLI::App& program);

}  // namespace vantorelix::cli
