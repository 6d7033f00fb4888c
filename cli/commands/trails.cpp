#include <algorithm>
#include <chrono>
#include <memory>
#include <sstream>

#include "cli/args/picture.h"
#include "cli/commands/commands.h"
#include "cli/commands/scene_outputs.h"
#include "cli/commands/trail_making.h"
#include "cli/output/page/html.h"
#include "cli/output/svg/svg.h"
#include "cli/output/writers.h"
#include "cli/terminal/failure.h"
#include "cli/terminal/screenshot.h"

namespace vantorelix::cli {

namespace {

constexpr const char* kTrailsFooter = R"(
Without --out a table goes to standard output. The extension of a file names its format:
  .json  everything: points, colours, keys of each trail     .csv  a line a sample
  .svg   a picture, light and dark                           .html  a page to look at them from every side
  .png   the same as pixels, drawn by a browser of yours
'--out=-.json' writes to standard output.

Examples:
  vantorelix trails bounce.ma
  vantorelix trails before.ma --compare after.ma --out apart.json
  vantorelix trails walk.bvh --select LeftHand --select RightHand --range 0:60 --out hands.svg
  vantorelix trails arm.ma --select 'arm|wrist' --samples-per-frame 4 --color-mode spacing --out wrist.json
  vantorelix trails shots/*.fbx --out 'out/{stem}.json' --jobs 4 --keep-going
  vantorelix trails walk.bvh --frame 12 --onion every:6 --title 'The walk' --size 1920x1080 --out walk.png)";

const std::vector<std::string> kTrailExtensions = {".json", ".csv", ".svg", ".png", ".html"};

struct TrailsOptions {
  TrailOptions trails;
  SceneOutputs files;
  PictureOptions picture;
  std::string csv_columns;
};

// "speed,key"; nothing where a word of it is not a column, or comes twice.
std::optional<std::vector<CsvColumn>> parse_columns(const std::string& text) {
  std::vector<CsvColumn> columns;
  std::istringstream words(text + ',');
  for (std::string word; std::getline(words, word, ',');) {
    const auto column = csv_column(word);
    if (!column || std::find(columns.begin(), columns.end(), *column) != columns.end()) return std::nullopt;
    columns.push_back(*column);
  }
  return columns;
}

// The picture of the .svg as pixels.
void write_png(TextSink& out, const session::TrailReport& report, SvgOptions options) {
  if (options.theme == "auto") options.theme = "light";
  StringSink svg;
  const PictureSize size = write_svg(svg, report, options);
  out << png_of(svg.text(), size.width, size.height);
}

void write(OutputFile& out, const session::TrailReport& report, const TrailsOptions& options) {
  const std::string extension = extension_of(out.path().string());
  if (extension == ".json")
    write_json(out, report);
  else if (extension == ".csv")
    write_csv(out, report,
              options.csv_columns.empty() ? std::vector<CsvColumn>() : *parse_columns(options.csv_columns));
  else if (extension == ".html")
    write_html(out, report);
  else if (extension == ".png")
    write_png(out, report, options.picture.svg());
  else
    write_svg(out, report, options.picture.svg());
}

bool is_csv(const std::string& output) { return extension_of(output) == ".csv"; }
bool is_page(const std::string& output) { return extension_of(output) == ".html"; }
bool has_measures(const std::string& output) { return extension_of(output) == ".json" || is_page(output); }

void run_one(const TrailsOptions& options, const std::vector<std::string>& outputs, Terminal& terminal) {
  const auto begun = std::chrono::steady_clock::now();
  Surroundings around;
  around.statics = std::any_of(outputs.begin(), outputs.end(), is_page);
  if (std::any_of(outputs.begin(), outputs.end(), has_measures)) around.figures = session::Figures::with;
  with_trails(options.trails, around, terminal, [&](const session::TrailReport& report) {
    if (outputs.empty())
      print_table(trail_table(report), terminal);
    else
      write_outputs(outputs, report.trails.size(), terminal, [&](OutputFile& out) { write(out, report, options); });
    terminal.done(report.trails.size(),
                  std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count());
  });
}

void run_trails(const CLI::App& command, TrailsOptions options, Terminal& terminal) {
  const auto& outputs = options.files.outputs;
  if (!options.csv_columns.empty() && std::none_of(outputs.begin(), outputs.end(), is_csv))
    throw UsageError("--csv-columns: no .csv is written; name one with --out");
  for_each_scene(command, options.files, kTrailExtensions, terminal,
                 [&](const std::string& scene, const std::vector<std::string>& files) {
                   options.trails.scene.file = scene;
                   run_one(options, files, terminal);
                 });
}

}  // namespace

Command add_trails(CLI::App& program) {
  CLI::App& command = *program.add_subcommand("trails", "Sample the trails of animated objects and write them");
  const auto options = std::make_shared<TrailsOptions>();
  add_scene_arguments(command, options->files.scenes, options->trails.scene);
  add_trail_options(command, options->trails);
  add_repeated(command, "--out", options->files.outputs,
               "Write .json, .csv, .svg, .png or .html; may be repeated; {stem} is the scene's name")
      ->type_name("FILE");
  add_checked(command, "--csv-columns", options->csv_columns, "COLUMNS",
              "Further columns of a .csv: speed, key, or both as speed,key",
              "a list of columns; write speed, key or "
              "speed,key",
              [](const std::string& text) { return parse_columns(text).has_value(); });
  add_batch_options(command, options->files.batch);
  add_picture_options(command, options->picture);
  command.footer(kTrailsFooter);
  return {&command, [options, &command](Terminal& terminal) { run_trails(command, *options, terminal); }};
}

}  // namespace vantorelix::cli
