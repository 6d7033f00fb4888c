#include <memory>
#include <unordered_set>

#include "base/number_text.h"
#include "cli/commands/commands.h"
#include "cli/commands/scene_file.h"
#include "cli/output/curve_writers.h"
#include "cli/output/output_file.h"
#include "cli/output/text.h"
#include "cli/terminal/failure.h"
#include "session/session.h"

namespace vantorelix::cli {

using standalone::NodeId;
using standalone::Scene;

namespace {

constexpr const char* kCurvesFooter = R"(
One NURBS curve per object, named "vlx_OBJECT_curve", with a control vertex a sample.

Examples:
  vantorelix curves bounce.ma --out curves.ma
  vantorelix curves walk.bvh --select LeftHand --degree 1 --out hand.ma --out hand.csv)";

struct CurvesOptions {
  SceneOptions scene;
  std::optional<std::int64_t> degree = 3;
  std::optional<std::int64_t> samples_per_frame;
  std::vector<std::string> outputs;
};

std::vector<CurveView> new_curves(const Scene& scene, const std::unordered_set<NodeId>& known) {
  std::vector<CurveView> curves;
  for (const NodeId shape : scene.nodes.of_type("nurbsCurve"))
    if (known.count(shape) == 0)
      curves.push_back({std::string(scene.names.short_name(scene.nodes.parent(shape))),
                        std::string(scene.names.short_name(shape)), scene.attributes.curve_degree(shape),
                        &scene.attributes.curve_points(shape)});
  return curves;
}

void write_all(const CurvesOptions& options, const std::vector<CurveView>& curves, const Scene& scene,
               Terminal& terminal) {
  std::vector<std::unique_ptr<OutputFile>> files;
  for (const std::string& output : options.outputs) {
    files.push_back(std::make_unique<OutputFile>(output));
    if (extension_of(output) == ".ma")
      write_maya_ascii(*files.back(), curves, scene);
    else
      write_curve_csv(*files.back(), curves);
  }
  OutputFile::commit(files);
  for (const auto& file : files)
    if (!file->is_stdout()) terminal.note(file->path().string() + ": " + counted(curves.size(), "curve"));
}

void run_curves(const CurvesOptions& options, Terminal& terminal) {
  terminal.set_scene(options.scene.file);
  check_outputs(options.outputs, {".ma", ".csv"}, options.scene.file);
  for (const std::string& output : options.outputs) check_destination(output);
  Scene loaded = load_scene(options.scene, terminal);
  const auto objects = choose_objects(loaded, options.scene);
  options.scene.apply_range(loaded, objects.size());
  const auto old = loaded.nodes.of_type("nurbsCurve");
  const std::unordered_set<NodeId> known(old.begin(), old.end());

  session::Session session(std::move(loaded), session_options(terminal));
  session::TrailSettings settings;
  if (options.samples_per_frame) settings.samples_per_frame = *options.samples_per_frame;
  session.check_size(objects.size(), settings);
  session.create(objects, settings, [&] { session.convert_to_nurbs(*options.degree); });
  terminal.end_progress();

  const auto curves = new_curves(session.scene(), known);
  if (curves.empty())
    throw Failure(options.scene.file + ": no trail has the " + std::to_string(*options.degree + 1) +
                  " samples that a curve of degree " + std::to_string(*options.degree) +
                  " needs; lower --degree or widen --range");
  write_all(options, curves, session.scene(), terminal);
}

}  // namespace

Command add_curves(CLI::App& program) {
  CLI::App& command = *program.add_subcommand("curves", "Bake trails into NURBS curves");
  const auto options = std::make_shared<CurvesOptions>();
  add_scene_argument(command, options->scene);
  add_selection_options(command, options->scene);
  add_integer(command, "--degree", options->degree, 1, 7, "Degree of the curves, 1 to 7 (default: 3)");
  add_integer(command, "--samples-per-frame", options->samples_per_frame, 1, 1'000'000'000,
              "Control vertices a frame, at least 1");
  add_repeated(command, "--out", options->outputs, "Write .ma or .csv; may be repeated")->type_name("FILE")->required();
  command.footer(kCurvesFooter);
  return {&command, [options](Terminal& terminal) { run_curves(*options, terminal); }};
}

}  // namespace vantorelix::cli
