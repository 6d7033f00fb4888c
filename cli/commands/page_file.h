// Where the commands that make a page leave it, and showing it in the browser.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

#include "base/text_sink.h"
#include "cli/terminal/terminal.h"

namespace vantorelix::cli {

struct PageFileOptions {
  std::string output;
  bool no_open = false;
};
void add_page_file_options(CLI::App& command, PageFileOptions& options);

// Throws UsageError or Failure where no page can be left there. `scene` may be empty: it is none of the page's.
void check_page_file(const PageFileOptions& options, const std::string& scene);

// Has `write` write the page, which returns what is in it, for a note ("3 trails"); then opens it, unless that is not
// wanted. Without a name for it, it goes into a new folder of the system's temporary files, and is called as `stem`.
void leave_page(const PageFileOptions& options, const std::string& stem, Terminal& terminal,
                const std::function<std::string(TextSink&)>& write);

}  // namespace vantorelix::cli
