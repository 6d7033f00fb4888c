#include <cstdio>
#include <memory>
#include <set>
#include <unordered_map>

#include "cli/args/options.h"
#include "cli/commands/commands.h"
#include "cli/failure.h"
#include "cli/output/output_file.h"
#include "cli/output/svg.h"
#include "cli/output/text.h"
#include "cli/output/writers.h"
#include "cli/scene_file.h"
#include "cli/trail_report.h"
#include "cli/trail_session.h"

namespace vantorelix::cli {

namespace {

constexpr const char* kFooter = R"(
Without --out a table goes to standard output. The format of a file is told by its extension:
  .json  everything: points, colours, keys of each trail     .csv  a line a sample
  .svg   a picture, light and dark                           '--out=-.json' writes to standard output

Examples:
  vantorelix trails bounce.ma
  vantorelix trails walk.bvh --select LeftHand --select RightHand --range 0:60 --out hands.svg
  vantorelix trails arm.ma --select 'arm|wrist' --samples-per-frame 4 --color-mode spacing --out wrist.json)";

struct TrailsOptions {
  SceneOptions scene;
  std::optional<std::int64_t> samples_per_frame;
  std::string color_mode;
  std::optional<double> line_width, point_size;
  bool no_line = false, no_dots = false;
  std::optional<bool> ghost;
  std::string preferences;
  std::vector<std::string> outputs;
  std::string view = "persp", theme = "auto";

  TrailSettings settings() const;
};

const std::vector<std::string> kColorModes = {"standard", "spacing", "flow", "beats", "0", "1", "2", "3"};

TrailSettings TrailsOptions::settings() const {
  TrailSettings result;
  if (samples_per_frame) result.samples_per_frame = *samples_per_frame;
  if (line_width) result.line_width = *line_width;
  if (point_size) result.point_size = *point_size;
  if (no_line) result.show_line = false;
  if (no_dots) result.show_dots = false;
  if (ghost) result.ghost = *ghost;
  for (std::size_t i = 0; i < kColorModes.size(); ++i)
    if (color_mode == kColorModes[i]) result.color_mode = static_cast<std::int64_t>(i % 4);
  return result;
}

void write(OutputFile& out, const TrailReport& report, const SvgOptions& svg) {
  const std::string extension = extension_of(out.path().string());
  if (extension == ".json")
    write_json(out, report);
  else if (extension == ".csv")
    write_csv(out, report);
  else
    write_svg(out, report, svg);
}

// All files are written before the first takes its place: a failure leaves none.
void write_all(const std::vector<std::string>& outputs, const TrailReport& report, const SvgOptions& svg,
               Terminal& terminal) {
  std::vector<std::unique_ptr<OutputFile>> files;
  for (const std::string& output : outputs) {
    files.push_back(std::make_unique<OutputFile>(output));
    write(*files.back(), report, svg);
  }
  for (const auto& file : files) file->commit();
  for (const auto& file : files)
    if (!file->is_stdout())
      terminal.note(file->path().string() + ": " + counted(report.trails.size(), "trail") + ", " +
                    readable(static_cast<double>(file->written()) / 1024.0, 3) + " KB");
}

void warn_of_inexact(const TrailReport& report, Terminal& terminal) {
  std::unordered_map<std::string, std::size_t> counts;
  std::vector<std::string> order;
  for (const TrailView& trail : report.trails)
    for (const std::string& text : trail.warnings)
      if (counts[text]++ == 0) order.push_back(text);
  for (const std::string& text : order)
    terminal.warn(counted(counts[text], "trail") + " may differ from the scene's own motion: " + text);
}

void print_table(const TrailReport& report, const Terminal& terminal) {
  const std::string table = trail_table(report);
  const std::size_t heading = table.find('\n');
  std::printf("%s%s", terminal.bold(table.substr(0, heading)).c_str(), table.c_str() + heading);
}

std::optional<std::filesystem::path> preferences_file(const std::string& name) {
  if (name.empty()) return std::nullopt;
  if (!std::filesystem::exists(name)) throw Failure(name + ": no such file; check the path after --preferences");
  return name;
}

void run_trails(const TrailsOptions& options, Terminal& terminal) {
  const SceneOptions& scene_options = options.scene;
  check_outputs(options.outputs, {".json", ".csv", ".svg"}, scene_options.file);
  for (const std::string& output : options.outputs) check_destination(output);

  standalone::Scene scene = load_scene(scene_options, terminal);
  const auto objects = choose(scene, scene_options.selection, scene_options.file);
  scene_options.apply_range(scene, objects.size());
  const auto preferences = preferences_file(options.preferences);
  TrailSession session(std::move(scene), preferences, terminal);
  const TrailSettings settings = options.settings();
  session.check_size(objects.size(), settings);
  const auto trails = session.create(objects, settings);
  const TrailReport report = read_trails(session.scene(), trails, scene_options.file);

  warn_of_inexact(report, terminal);
  if (options.outputs.empty())
    print_table(report, terminal);
  else
    write_all(options.outputs, report, {options.view, options.theme}, terminal);
}

}  // namespace

Command add_trails(CLI::App& program) {
  CLI::App& command = *program.add_subcommand("trails", "Sample the trails of animated objects and write them");
  const auto options = std::make_shared<TrailsOptions>();
  add_scene_argument(command, options->scene);
  add_selection_options(command, options->scene);
  add_whole(command, "--samples-per-frame", options->samples_per_frame, 1, 1'000'000'000,
            "Samples a frame, at least 1");
  add_choice(command, "--color-mode", options->color_mode, kColorModes,
             "What colours mean: one colour; speed; past and future of the current time; alternating between keys");
  command.add_option("--line-width", options->line_width, "Width of the line in pixels")->type_name("W");
  command.add_option("--point-size", options->point_size, "Width of the dots in pixels")->type_name("S");
  command.add_flag("--no-line", options->no_line, "Leave the line out");
  command.add_flag("--no-dots", options->no_dots, "Leave the dots out");
  command.add_flag("--ghost,!--no-ghost", options->ghost, "Mark the trails to be drawn through geometry, or not");
  command
      .add_option("--preferences", options->preferences, "JSON file of preferences, for settings that no option gives")
      ->type_name("FILE");
  add_repeated(command, "--out", options->outputs, "Write .json, .csv or .svg; may be repeated")->type_name("FILE");
  add_choice(command, "--view", options->view, {"persp", "front", "side", "top"}, "How a picture looks at the scene");
  add_choice(command, "--theme", options->theme, {"auto", "light", "dark"},
             "Background of a picture; auto follows the reader's setting");
  command.footer(kFooter);
  return {&command, [options](Terminal& terminal) { run_trails(*options, terminal); }};
}

}  // namespace vantorelix::cli
