#include "cli/commands/comparing.h"

#include <algorithm>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/number_text.h"
#include "cli/commands/scene_file.h"
#include "cli/terminal/failure.h"
#include "session/compare.h"
#include "session/session.h"

namespace vantorelix::cli {

using standalone::NodeId;

namespace {

// glTF frames are counted as those of the first scene are, unless told otherwise; an FBX scene is turned to its axes.
SceneOptions second_scene(const CompareOptions& options, const SceneOptions& first,
                          const session::TrailReport& report) {
  SceneOptions second;
  second.prefix = "--compare-";
  second.file = options.file.empty() ? first.file : options.file;
  if (options.file.empty()) second.format = first.format;
  second.take = options.take;
  second.fps = options.fps;
  second.frames_per_second = report.fps;
  second.up_axis = report.up_axis;
  return second;
}

void check_matches(const std::vector<std::optional<NodeId>>& nodes, const session::TrailReport& report,
                   const std::string& file, Terminal& terminal) {
  const auto lacking = static_cast<std::size_t>(std::count(nodes.begin(), nodes.end(), std::nullopt));
  if (lacking == nodes.size())
    throw Failure(file + ": has none of the objects that were chosen from " + report.scene +
                  "; compare scenes whose objects have the same paths ('vantorelix info " + file +
                  " --all' lists them)");
  if (lacking != 0)
    terminal.warn(file + ": lacks " + std::to_string(lacking) + " of " + counted(nodes.size(), "object") +
                  ", which are not compared: objects are matched by their paths, namespaces or not");
}

std::vector<NodeId> found(const std::vector<std::optional<NodeId>>& nodes) {
  std::vector<NodeId> result;
  for (const auto& node : nodes)
    if (node) result.push_back(*node);
  return result;
}

std::vector<std::optional<std::string>> paths_of(const std::vector<std::optional<NodeId>>& nodes,
                                                 const standalone::Scene& scene) {
  std::vector<std::optional<std::string>> result(nodes.size());
  for (std::size_t i = 0; i < nodes.size(); ++i)
    if (nodes[i]) result[i] = scene.names.long_name(*nodes[i]);
  return result;
}

// A motion that is shorter than the first scene's range is compared beyond its end too.
void check_range(const standalone::Scene& scene, const session::TrailReport& report, const std::string& file,
                 Terminal& terminal) {
  const double first = scene.settings.playback_min(), last = scene.settings.playback_max();
  if (first <= report.first && last >= report.last) return;
  terminal.warn(file + ": plays frames " + readable(first, 8) + " to " + readable(last, 8) + " of " +
                readable(report.first, 8) + " to " + readable(report.last, 8) +
                ": beyond them its objects are where its curves leave them; shorten the comparison with --range");
}

session::TrailReport sample(standalone::Scene scene, const std::vector<NodeId>& objects,
                            const session::TrailReport& report, const std::string& file, session::Figures figures,
                            Terminal& terminal) {
  scene.settings.set_playback_range(report.first, report.last);
  session::Session session(std::move(scene), session_options(terminal));
  session::TrailSettings settings;
  settings.samples_per_frame = report.trails.front().samples_per_frame;
  session.check_size(objects.size(), settings);
  const auto trails = session.create(objects, settings);
  terminal.end_progress();
  return session::read_trails(session.scene(), trails, file, figures);
}

}  // namespace

void add_compare_options(CLI::App& command, CompareOptions& options) {
  command.add_option("--compare", options.file, "Second scene: how far apart the same objects are, frame by frame")
      ->type_name("FILE");
  command
      .add_option("--compare-take", options.take,
                  "Its take or clip (default: the first); without --compare, one of the same scene")
      ->type_name("NAME");
  add_rate(command, "--compare-fps", options.fps, "Its frames a second, if it is glTF (default: the first scene's)");
}

void compare_with(const CompareOptions& options, const SceneOptions& first, session::TrailReport& report,
                  session::Figures figures, Terminal& terminal) {
  const SceneOptions second = second_scene(options, first, report);
  standalone::Scene scene = load_scene(second, terminal);
  const auto nodes = session::counterparts(report, scene);
  check_matches(nodes, report, second.file, terminal);
  check_range(scene, report, second.file, terminal);
  const auto paths = paths_of(nodes, scene);
  const auto other = sample(std::move(scene), found(nodes), report, second.file, figures, terminal);
  for (const std::string& text : session::compare(report, paths, other)) terminal.warn(second.file + ": " + text);
  warn_of_inexact(other, second.file, terminal);
  report.compared = {second.file, options.take.empty() ? std::nullopt : std::optional(options.take), other.fps};
}

void warn_of_inexact(const session::TrailReport& report, const std::string& file, Terminal& terminal) {
  std::unordered_map<std::string, std::size_t> counts;
  std::vector<std::string> order;
  for (const session::TrailView& trail : report.trails)
    for (const std::string& text : trail.warnings)
      if (counts[text]++ == 0) order.push_back(text);
  for (const std::string& text : order)
    terminal.warn((file.empty() ? "" : file + ": ") + counted(counts[text], "trail") +
                  " may differ from the scene's own motion: " + text);
}

}  // namespace vantorelix::cli
