#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <sstream>

#include "base/number_text.h"
#include "cli/args/picture.h"
#include "cli/args/placeholders.h"
#include "cli/args/scene_files.h"
#include "cli/commands/batch.h"
#include "cli/commands/commands.h"
#include "cli/commands/trail_making.h"
#include "cli/output/html.h"
#include "cli/output/output_file.h"
#include "cli/output/svg/svg.h"
#include "cli/output/text.h"
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

const std::vector<std::string> kExtensions = {".json", ".csv", ".svg", ".png", ".html"};

struct TrailsOptions {
  TrailOptions trails;
  std::vector<std::string> scenes;
  BatchOptions batch;
  std::vector<std::string> outputs;
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

void write_all(const TrailsOptions& options, const session::TrailReport& report, Terminal& terminal) {
  std::vector<std::unique_ptr<OutputFile>> files;
  for (const std::string& output : options.outputs) {
    files.push_back(std::make_unique<OutputFile>(output));
    write(*files.back(), report, options);
  }
  OutputFile::commit(files);
  for (const auto& file : files)
    if (!file->is_stdout())
      terminal.note(file->path().string() + ": " + counted(report.trails.size(), "trail") + ", " +
                    readable(static_cast<double>(file->written()) / 1024.0, 3) + " KB");
}

void print_table(const session::TrailReport& report, const Terminal& terminal) {
  const std::string table = trail_table(report);
  const std::size_t heading = table.find('\n');
  std::printf("%s%s", terminal.bold(table.substr(0, heading)).c_str(), table.c_str() + heading);
}

bool is_csv(const std::string& output) { return extension_of(output) == ".csv"; }
bool is_page(const std::string& output) { return extension_of(output) == ".html"; }

void run_one(const TrailsOptions& options, Terminal& terminal) {
  const auto begun = std::chrono::steady_clock::now();
  const std::vector<std::string>& outputs = options.outputs;
  terminal.set_scene(options.trails.scene.file);
  check_outputs(outputs, kExtensions, options.trails.scene.file);
  for (const std::string& output : outputs) check_destination(output);
  const bool statics = std::any_of(outputs.begin(), outputs.end(), is_page);
  with_trails(options.trails, statics, terminal, [&](const session::TrailReport& report) {
    if (outputs.empty())
      print_table(report, terminal);
    else
      write_all(options, report, terminal);
    terminal.done(report.trails.size(),
                  std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count());
  });
}

void run_several(const CLI::App& command, const TrailsOptions& options, Terminal& terminal) {
  if (options.batch.skip_existing && options.outputs.empty())
    throw UsageError("--skip-existing: there are no files to be written; name them with --out");
  const auto scenes = batch_of(options.scenes, options.outputs);
  for (const BatchScene& each : scenes) {
    check_outputs(each.outputs, kExtensions, each.scene);
    if (!options.batch.keep_going)
      for (const std::string& output : each.outputs) check_destination(output);
  }
  run_batch(command, scenes, options.batch, terminal);
}

void run_trails(const CLI::App& command, TrailsOptions options, Terminal& terminal) {
  if (!options.csv_columns.empty() && std::none_of(options.outputs.begin(), options.outputs.end(), is_csv))
    throw UsageError("--csv-columns: no .csv is written; name one with --out");
  options.scenes = scene_files(options.scenes);
  if (options.scenes.size() > 1 || options.batch.any()) return run_several(command, options, terminal);
  options.trails.scene.file = options.scenes.front();
  for (std::string& output : options.outputs) output = fill_in(output, options.scenes.front());
  run_one(options, terminal);
}

}  // namespace

Command add_trails(CLI::App& program) {
  CLI::App& command = *program.add_subcommand("trails", "Sample the trails of animated objects and write them");
  const auto options = std::make_shared<TrailsOptions>();
  add_scene_arguments(command, options->scenes, options->trails.scene);
  add_trail_options(command, options->trails);
  add_repeated(command, "--out", options->outputs,
               "Write .json, .csv, .svg, .png or .html; may be repeated; {stem} is the scene's name")
      ->type_name("FILE");
  add_checked(command, "--csv-columns", options->csv_columns, "COLUMNS",
              "Further columns of a .csv: speed, key, or both as speed,key",
              "a list of columns; write speed, key or "
              "speed,key",
              [](const std::string& text) { return parse_columns(text).has_value(); });
  add_batch_options(command, options->batch);
  add_picture_options(command, options->picture);
  command.footer(kTrailsFooter);
  return {&command, [options, &command](Terminal& terminal) { run_trails(command, *options, terminal); }};
}

}  // namespace vantorelix::cli
