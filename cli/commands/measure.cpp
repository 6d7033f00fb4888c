#include <chrono>
#include <memory>

#include "cli/commands/commands.h"
#include "cli/commands/scene_outputs.h"
#include "cli/commands/trail_making.h"
#include "cli/output/measure_writers.h"
#include "cli/terminal/failure.h"
#include "session/tables/measuring.h"

namespace vantorelix::cli {

namespace {

constexpr const char* kMeasureFooter = R"(
Without --out a table of the measures that say most goes to standard output; beside a second scene, of what changed most
of each trail, worst first. The extension of a file names its format:
  .json  every measure of each trail, with holds, pops and contacts     .csv  every measure, a line a trail
docs/measures.md says what each measure is, and when it is not known.

Examples:
  vantorelix measure walk.bvh
  vantorelix measure walk.bvh --select '*Foot' --out feet.csv
  vantorelix measure monday.fbx --compare tuesday.fbx
  vantorelix measure walk.fbx --select '*Foot' --unit cm --contacts centimetres
  vantorelix measure shots/*.fbx --out 'out/{stem}.json' --jobs 4 --keep-going)";

const std::vector<std::string> kMeasureExtensions = {".json", ".csv"};
const std::vector<std::string> kContactRules = {"figure", "centimetres"};

struct MeasureOptions {
  TrailOptions trails;
  SceneOutputs files;
  std::string contacts;
};

void check_unit(const session::TrailReport& report) {
  if (report.contacts == session::ContactRule::centimetres && !session::centimetres(report.unit))
    throw Failure(report.scene +
                  ": states no unit of length, and --contacts centimetres needs one; use --contacts figure");
}

void show(const session::TrailReport& report, const std::vector<std::string>& outputs, Terminal& terminal) {
  const auto measured = session::measure(report);
  if (outputs.empty())
    return print_table(report.compared ? changes_table(report, measured) : measures_table(report, measured), terminal);
  write_outputs(outputs, report.trails.size(), terminal, [&](OutputFile& out) {
    if (extension_of(out.path().string()) == ".json")
      write_measures_json(out, report, measured);
    else
      write_measures_csv(out, report, measured);
  });
}

void run_one(const TrailOptions& options, const std::vector<std::string>& outputs, Terminal& terminal) {
  const auto begun = std::chrono::steady_clock::now();
  with_trails(options, {.figures = session::Figures::with}, terminal, [&](const session::TrailReport& report) {
    check_unit(report);
    show(report, outputs, terminal);
    terminal.done(report.trails.size(),
                  std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count());
  });
}

void run_measure(const CLI::App& command, MeasureOptions options, Terminal& terminal) {
  if (options.contacts == kContactRules[1]) options.trails.contacts = session::ContactRule::centimetres;
  for_each_scene(command, options.files, kMeasureExtensions, terminal,
                 [&](const std::string& scene, const std::vector<std::string>& outputs) {
                   options.trails.scene.file = scene;
                   run_one(options.trails, outputs, terminal);
                 });
}

}  // namespace

Command add_measure(CLI::App& program) {
  CLI::App& command =
      *program.add_subcommand("measure", "Measure how objects move, and what changed between two scenes");
  const auto options = std::make_shared<MeasureOptions>();
  add_scene_arguments(command, options->files.scenes, options->trails.scene);
  add_motion_options(command, options->trails);
  add_choice(
      command, "--contacts", options->contacts, kContactRules,
      "What counts as contact with the floor, and as sliding: parts of the figure's height (figure, the default), "
      "or below 5 cm, and above 50 cm a second (centimetres)");
  add_repeated(command, "--out", options->files.outputs,
               "Write .json or .csv; may be repeated; {stem} is the scene's name")
      ->type_name("FILE");
  add_batch_options(command, options->files.batch);
  command.footer(kMeasureFooter);
  return {&command, [options, &command](Terminal& terminal) { run_measure(command, *options, terminal); }};
}

}  // namespace vantorelix::cli
