#include <memory>

#include "cli/commands/commands.h"
#include "cli/commands/page_file.h"
#include "cli/output/page/live_html.h"

namespace vantorelix::cli {

namespace {

constexpr const char* kPageFooter = R"(
The page is one file that needs no network and nothing else. Drop a scene on it (.bvh, .ma, .fbx, .glb, or a .gltf
together with its buffers): it stays on your machine.

Examples:
  vantorelix page
  vantorelix page --out trails.html --no-open)";

void run_page(const PageFileOptions& options, Terminal& terminal) {
  check_page_file(options, "");
  check_engine();
  leave_page(options, "vantorelix", terminal, [](TextSink& out) {
    write_live_html(out, nullptr);
    return "the engine";
  });
}

}  // namespace

Command add_page(CLI::App& program) {
  CLI::App& command = *program.add_subcommand("page", "Make a page that opens scenes itself, with the engine in it");
  const auto options = std::make_shared<PageFileOptions>();
  add_page_file_options(command, *options);
  command.footer(kPageFooter);
  return {&command, [options](Terminal& terminal) { run_page(*options, terminal); }};
}

}  // namespace vantorelix::cli
