#include <filesystem>
#include <memory>

#include "base/number_text.h"
#include "cli/commands/commands.h"
#include "cli/commands/trail_making.h"
#include "cli/output/html.h"
#include "cli/output/output_file.h"
#include "cli/output/text.h"
#include "cli/terminal/browser.h"
#include "cli/terminal/failure.h"
#include "cli/terminal/private_folder.h"

namespace vantorelix::cli {

namespace fs = std::filesystem;

namespace {

constexpr const char* kViewFooter = R"(
The page is one file that needs no network and nothing else: look at it, keep it, send it. Without --out it goes into
a new folder among the system's temporary files. The variable BROWSER names another browser.

Examples:
  vantorelix view bounce.ma
  vantorelix view walk.bvh --select '*Foot' --color-mode spacing
  vantorelix view before.ma --compare after.ma
  vantorelix view robot.fbx --take reach --compare-take wave
  vantorelix view arm.ma --out arm.html --no-open)";

struct ViewOptions {
  TrailOptions trails;
  std::string output;
  bool no_open = false;
};

fs::path temporary_page(const std::string& scene) {
  return make_private_folder("name a file with --out") / (fs::path(scene).filename().string() + ".html");
}

void run_view(const ViewOptions& options, Terminal& terminal) {
  terminal.set_scene(options.trails.scene.file);
  if (!options.output.empty()) {
    check_outputs({options.output}, {".html"}, options.trails.scene.file);
    check_destination(options.output);
    if (OutputFile::means_stdout(options.output) && !options.no_open)
      throw UsageError("--out " + options.output + ": a browser cannot open standard output; add --no-open");
  }
  fs::path page;
  with_trails(options.trails, {.statics = true, .figures = session::Figures::with}, terminal,
              [&](const session::TrailReport& report) {
                OutputFile out(options.output.empty() ? temporary_page(report.scene) : fs::path(options.output));
                write_html(out, report);
                out.commit();
                page = out.path();
                if (!out.is_stdout()) terminal.note(page.string() + ": " + counted(report.trails.size(), "trail"));
              });
  if (options.no_open) return;
  if (!open_in_browser(fs::absolute(page)))
    throw Failure(page.string() +
                  ": was written, but no browser could be started; open the file in one, or name one in the variable "
                  "BROWSER");
}

}  // namespace

Command add_view(CLI::App& program) {
  CLI::App& command = *program.add_subcommand("view", "Show the trails of animated objects in the browser");
  const auto options = std::make_shared<ViewOptions>();
  add_scene_argument(command, options->trails.scene);
  add_trail_options(command, options->trails);
  command.add_option("--out", options->output, "Where the page goes (default: a temporary file)")->type_name("FILE");
  command.add_flag("--no-open", options->no_open, "Only write the page");
  command.footer(kViewFooter);
  return {&command, [options](Terminal& terminal) { run_view(*options, terminal); }};
}

}  // namespace vantorelix::cli
