#include <cstdio>
#include <memory>
#include <unordered_set>

#include "base/json_writer.h"
#include "base/number_text.h"
#include "cli/args/edit_script.h"
#include "cli/commands/commands.h"
#include "cli/commands/scene_file.h"
#include "cli/output/columns.h"
#include "cli/output/output_file.h"
#include "cli/terminal/failure.h"
#include "session/live_run.h"

namespace vantorelix::cli {

using standalone::NodeId;
using standalone::Scene;

namespace {

constexpr const char* kLiveFooter = R"(
The edits are a JSON file, {"edits": [...]}; each has "at", seconds from the start, and one of
  "set_key": "ball.translateY", "frame": 12, "value": 9.5     value in degrees on angles
  "move_key": "ball.translateY", "frame": 12, "to": 14        tangents go along
  "remove_key": "ball.translateY", "frame": 14
  "play": 0.3                                                 playback for so many seconds
  "file": "writing", "for": 0.2                               or reading, opening, creating

Examples:
  vantorelix live bounce.ma --edits bounce.edits.json
  vantorelix live rig.ma --select 'hand*' --edits drag.json --report drag.report.json)";

struct LiveOptions {
  SceneOptions scene;
  std::optional<std::int64_t> samples_per_frame;
  std::string edits, report;
};

// The engine's names for trails come from the objects' short names, so of several with one name only one stays live.
void check_distinct(const Scene& scene, const std::vector<NodeId>& objects) {
  std::unordered_set<std::string> names;
  for (const NodeId object : objects)
    if (!names.insert(std::string(scene.names.short_name(object))).second)
      throw Failure("several objects are named '" + std::string(scene.names.short_name(object)) +
                    "', and only one trail per name stays live; choose one of them by its path with --select");
}

std::string milliseconds(double seconds) { return fixed(seconds * 1e3, 3) + " ms"; }

std::string verdict(const session::LiveReport& report) {
  const std::string checked = std::to_string(report.samples) + " positions compared with the scene";
  return report.wrong == 0 ? "yes, " + checked + " are equal"
                           : "NO, of " + checked + " " + std::to_string(report.wrong) + " differ, by up to " +
                                 readable(report.largest_difference);
}

void print_report(const session::LiveReport& r) {
  std::printf(
      "%s",
      columns({{"trails", std::to_string(r.trails)},
               {"edits", std::to_string(r.edits) + ", the longest took " + milliseconds(r.longest_edit)},
               {"steps", std::to_string(r.steps) + " that worked, " + std::to_string(r.waits) + " that only waited"},
               {"longest step", milliseconds(r.longest_step)},
               {"all steps", milliseconds(r.total_steps)},
               {"last edit to exact", milliseconds(r.last_to_exact) + ", the quiet time included"},
               {"exact", verdict(r)}},
              {false, false})
          .c_str());
}

void write_report(TextSink& out, const session::LiveReport& r, const std::string& scene) {
  JsonWriter json(out);
  const auto milli = [&](const char* name, double seconds) { json.field(name, seconds * 1e3); };
  json.object(JsonLayout::lines(2), [&] {
    json.field("scene", scene);
    json.field("trails", r.trails);
    json.field("edits", r.edits);
    json.field("steps", r.steps);
    json.field("waits", r.waits);
    milli("longest_edit_ms", r.longest_edit);
    milli("longest_step_ms", r.longest_step);
    milli("total_steps_ms", r.total_steps);
    milli("last_edit_to_exact_ms", r.last_to_exact);
    json.field("exact", r.wrong == 0);
    json.field("positions_compared", r.samples);
    json.field("positions_wrong", r.wrong);
    json.field("largest_difference", r.largest_difference);
  });
  out << '\n';
}

void run(const LiveOptions& options, Terminal& terminal) {
  terminal.set_scene(options.scene.file);
  if (!options.report.empty()) {
    check_outputs({options.report}, {".json"}, options.scene.file);
    check_destination(options.report);
  }
  Scene loaded = load_scene(options.scene, terminal);
  const auto objects = choose_objects(loaded, options.scene);
  options.scene.apply_range(loaded, objects.size());
  check_distinct(loaded, objects);
  const auto events = read_edits(options.edits, loaded);
  session::Session session(std::move(loaded), session_options(terminal));
  session::TrailSettings settings;
  if (options.samples_per_frame) settings.samples_per_frame = *options.samples_per_frame;
  session.check_size(objects.size(), settings);
  const auto trails = session.create(objects, settings);
  terminal.end_progress();
  const session::LiveReport report = session::run_live(session, trails, events);
  if (options.report.empty() || !OutputFile::means_stdout(options.report)) print_report(report);
  if (!options.report.empty()) {
    OutputFile out(options.report);
    write_report(out, report, options.scene.file);
    out.commit();
  }
  if (report.wrong != 0)
    throw Failure(
        "the trails differ from the scene; edits made while a file is read or written are not followed: move those, "
        "and "
        "report any other difference with the scene and its edits");
}

}  // namespace

Command add_live(CLI::App& program) {
  CLI::App& command = *program.add_subcommand("live", "Replay timed edits and measure how the trails follow");
  const auto options = std::make_shared<LiveOptions>();
  add_scene_argument(command, options->scene);
  add_selection_options(command, options->scene);
  add_integer(command, "--samples-per-frame", options->samples_per_frame, 1, 1'000'000'000,
              "Samples a frame, at least 1");
  command.add_option("--edits", options->edits, "JSON file of timed edits, see below")->type_name("FILE")->required();
  command.add_option("--report", options->report, "Write the figures as .json too")->type_name("FILE");
  command.footer(kLiveFooter);
  return {&command, [options](Terminal& terminal) { run(*options, terminal); }};
}

}  // namespace vantorelix::cli
