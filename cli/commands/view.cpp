#include <filesystem>
#include <memory>

#include "base/number_text.h"
#include "cli/commands/commands.h"
#include "cli/commands/live_scene.h"
#include "cli/commands/page_file.h"
#include "cli/commands/trail_making.h"
#include "cli/output/page/html.h"
#include "cli/output/page/live_html.h"

namespace vantorelix::cli {

namespace {

constexpr const char* kViewFooter = R"(
The page is one file that needs no network and nothing else: look at it, keep it, send it. Without --out it goes into
a new folder among the system's temporary files. The variable BROWSER names another browser. A live page holds the
scene's files and the engine: keys can be dragged in it, and other scenes opened.

Examples:
  vantorelix view bounce.ma
  vantorelix view walk.bvh --select '*Foot' --color-mode spacing
  vantorelix view before.ma --compare after.ma
  vantorelix view robot.fbx --take reach --compare-take wave
  vantorelix view arm.ma --out arm.html --no-open
  vantorelix view arm.ma --live)";

struct ViewOptions {
  TrailOptions trails;
  PageFileOptions page;
  bool live = false;
};

void run_view(const ViewOptions& options, Terminal& terminal) {
  const std::string& file = options.trails.scene.file;
  terminal.set_scene(file);
  check_page_file(options.page, file);
  const std::string stem = std::filesystem::path(file).filename().string();
  if (options.live) {
    const LiveScene scene = live_scene(options.trails, terminal);
    return leave_page(options.page, stem, terminal, [&](TextSink& out) {
      write_live_html(out, &scene);
      return counted(scene.files.size(), "file") + " and the engine";
    });
  }
  with_trails(options.trails, {.statics = true, .figures = session::Figures::with}, terminal,
              [&](const session::TrailReport& report) {
                leave_page(options.page, stem, terminal, [&](TextSink& out) {
                  write_html(out, report);
                  return counted(report.trails.size(), "trail");
                });
              });
}

}  // namespace

Command add_view(CLI::App& program) {
  CLI::App& command = *program.add_subcommand("view", "Show the trails of animated objects in the browser");
  const auto options = std::make_shared<ViewOptions>();
  add_scene_argument(command, options->trails.scene);
  add_trail_options(command, options->trails);
  command.add_flag("--live", options->live, "Put the scene and the engine into the page, to edit keys there");
  add_page_file_options(command, options->page);
  command.footer(kViewFooter);
  return {&command, [options](Terminal& terminal) { run_view(*options, terminal); }};
}

}  // namespace vantorelix::cli
