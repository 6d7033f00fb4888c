#include "cli/commands/page_file.h"

#include <filesystem>

#include "cli/args/options.h"
#include "cli/output/output_file.h"
#include "cli/terminal/browser.h"
#include "cli/terminal/failure.h"
#include "cli/terminal/private_folder.h"

namespace vantorelix::cli {

namespace fs = std::filesystem;

void add_page_file_options(CLI::App& command, PageFileOptions& options) {
  command.add_option("--out", options.output, "Where the page goes (default: a temporary file)")->type_name("FILE");
  command.add_flag("--no-open", options.no_open, "Only write the page");
}

void check_page_file(const PageFileOptions& options, const std::string& scene) {
  if (options.output.empty()) return;
  check_outputs({options.output}, {".html"}, scene);
  check_destination(options.output);
  if (OutputFile::means_stdout(options.output) && !options.no_open)
    throw UsageError("--out " + options.output + ": a browser cannot open standard output; add --no-open");
}

void leave_page(const PageFileOptions& options, const std::string& stem, Terminal& terminal,
                const std::function<std::string(TextSink&)>& write) {
  OutputFile out(options.output.empty() ? make_private_folder("name a file with --out") / (stem + ".html")
                                        : fs::path(options.output));
  const std::string content = write(out);
  out.commit();
  const fs::path page = out.path();
  if (!out.is_stdout()) terminal.note(page.string() + ": " + content);
  if (options.no_open) return;
  if (!open_in_browser(fs::absolute(page)))
    throw Failure(page.string() +
                  ": was written, but no browser could be started; open the file in one, or name one in the variable "
                  "BROWSER");
}

}  // namespace vantorelix::cli
