#include <cstdio>

#include "cli/args/manual_page.h"
#include "cli/commands/commands.h"

namespace vantorelix::cli {

namespace {

constexpr const char* kManualFooter = R"(
Example:
  vantorelix manual | man -l -)";

}  // namespace

Command add_manual(CLI::App& program) {
  CLI::App& command = *program.add_subcommand("manual", "Print the manual page, which man shows");
  command.footer(kManualFooter);
  return {&command,
          [&program](Terminal&) { std::printf("%s", manual_page(program, "vantorelix " VANTORELIX_VERSION).c_str()); }};
}

}  // namespace vantorelix::cli
