#include "cli/commands/scene_outputs.h"

#include <cstdio>
#include <memory>

#include "base/number_text.h"
#include "cli/args/options.h"
#include "cli/args/placeholders.h"
#include "cli/args/scene_files.h"
#include "cli/output/text.h"
#include "cli/terminal/failure.h"

namespace vantorelix::cli {

namespace {

void run_several(const CLI::App& command, const SceneOutputs& options, const std::vector<std::string>& extensions,
                 Terminal& terminal) {
  if (options.batch.skip_existing && options.outputs.empty())
    throw UsageError("--skip-existing: there are no files to be written; name them with --out");
  const auto scenes = batch_of(options.scenes, options.outputs);
  for (const BatchScene& each : scenes) {
    check_outputs(each.outputs, extensions, each.scene);
    if (!options.batch.keep_going)
      for (const std::string& output : each.outputs) check_destination(output);
  }
  run_batch(command, scenes, options.batch, terminal);
}

}  // namespace

void for_each_scene(const CLI::App& command, SceneOutputs options, const std::vector<std::string>& extensions,
                    Terminal& terminal,
                    const std::function<void(const std::string& scene, const std::vector<std::string>& outputs)>& one) {
  options.scenes = scene_files(options.scenes);
  if (options.scenes.size() > 1 || options.batch.any()) return run_several(command, options, extensions, terminal);
  const std::string& scene = options.scenes.front();
  for (std::string& output : options.outputs) output = fill_in(output, scene);
  terminal.set_scene(scene);
  check_outputs(options.outputs, extensions, scene);
  for (const std::string& output : options.outputs) check_destination(output);
  one(scene, options.outputs);
}

void write_outputs(const std::vector<std::string>& outputs, std::size_t trails, Terminal& terminal,
                   const std::function<void(OutputFile&)>& write) {
  std::vector<std::unique_ptr<OutputFile>> files;
  for (const std::string& output : outputs) {
    files.push_back(std::make_unique<OutputFile>(output));
    write(*files.back());
  }
  OutputFile::commit(files);
  for (const auto& file : files)
    if (!file->is_stdout())
      terminal.note(file->path().string() + ": " + counted(trails, "trail") + ", " +
                    readable(static_cast<double>(file->written()) / 1024.0, 3) + " KB");
}

void print_table(const std::string& table, const Terminal& terminal) {
  const std::size_t heading = table.find('\n');
  std::printf("%s%s", terminal.bold(table.substr(0, heading)).c_str(), table.c_str() + heading);
}

}  // namespace vantorelix::cli
