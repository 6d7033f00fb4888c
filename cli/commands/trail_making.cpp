#include "cli/commands/trail_making.h"
#include "base/number_text.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include "cli/commands/scene_file.h"
#include "cli/output/text.h"
#include "cli/terminal/failure.h"
#include "session/statics.h"

namespace vantorelix::cli {

namespace {

const std::vector<std::string> kColorModes = {"standard", "spacing", "flow", "beats", "0", "1", "2", "3"};

std::optional<std::filesystem::path> preferences_file(const std::string& name) {
  if (name.empty()) return std::nullopt;
  if (!std::filesystem::exists(name)) throw Failure(name + ": no such file; check the path after --preferences");
  return name;
}

// Turns the scene to the frame that was asked for.
void apply_frame(standalone::Scene& scene, const std::string& text) {
  const auto frame = parse_number(text);
  if (!frame) return;
  const double first = scene.settings.playback_min(), last = scene.settings.playback_max();
  if (*frame < first || *frame > last)
    throw Failure("--frame " + text + ": the frames are " + readable(first, 8) + " to " + readable(last, 8) +
                  "; name one of them, or widen --range");
  scene.settings.set_current_time(*frame);
}

}  // namespace

session::TrailSettings TrailOptions::settings() const {
  session::TrailSettings result;
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

void add_motion_options(CLI::App& command, TrailOptions& options) {
  add_selection_options(command, options.scene);
  add_compare_options(command, options.compare);
  add_integer(command, "--samples-per-frame", options.samples_per_frame, 1, 1'000'000'000,
              "Samples a frame, at least 1");
}

void add_trail_options(CLI::App& command, TrailOptions& options) {
  add_motion_options(command, options);
  add_choice(command, "--color-mode", options.color_mode, kColorModes,
             "What the colours show: nothing (standard), the speed (spacing), past and future (flow), the spans "
             "between keys (beats)");
  command.add_option("--line-width", options.line_width, "Width of the line in pixels")->type_name("W");
  command.add_option("--point-size", options.point_size, "Width of the dots in pixels")->type_name("S");
  command.add_flag("--no-line", options.no_line, "Leave the line out");
  command.add_flag("--no-dots", options.no_dots, "Leave the dots out");
  command.add_flag("--ghost,!--no-ghost", options.ghost, "Mark the trails to be drawn through geometry, or not");
  add_number(command, "--frame", options.frame, "FRAME",
             "The current frame, at which objects are shown (default: the scene's own)");
  command
      .add_option("--preferences", options.preferences, "JSON file of preferences, for settings that no option gives")
      ->type_name("FILE");
}

void with_trails(const TrailOptions& options, const Surroundings& around, Terminal& terminal,
                 const std::function<void(const session::TrailReport&)>& use) {
  if (!options.compare.fps.empty() && !options.compare.wanted())
    throw UsageError("--compare-fps: there is no second scene; name it with --compare");
  standalone::Scene scene = load_scene(options.scene, terminal, around.statics);
  const auto objects = choose_objects(scene, options.scene);
  options.scene.apply_range(scene, objects.size());
  apply_frame(scene, options.frame);
  session::Options session_options = cli::session_options(terminal);
  session_options.preferences = preferences_file(options.preferences);
  session::Session session(std::move(scene), std::move(session_options));
  for (const std::string& fault : session.preference_faults()) terminal.warn(options.preferences + ": " + fault);
  const session::TrailSettings settings = options.settings();
  session.check_size(objects.size(), settings);
  const auto trails = session.create(objects, settings);
  terminal.end_progress();
  session::TrailReport report = session::read_trails(session.scene(), trails, options.scene.file, around.figures);
  report.current = std::clamp(report.current, report.first, report.last);
  report.contacts = options.contacts;
  report.color_mode_chosen = session.names_color_mode(settings);
  if (around.statics) report.statics = session::static_boxes(session.scene(), report.current);
  warn_of_inexact(report, "", terminal);
  if (options.compare.wanted()) compare_with(options.compare, options.scene, report, around.figures, terminal);
  use(report);
}

}  // namespace vantorelix::cli
