#include "cli/commands/scene_file.h"

#include <system_error>

#include "cli/terminal/failure.h"
#include "cli/terminal/interrupt.h"
#include "session/failure.h"
#include "session/selection.h"
#include "standalone/formats/reader.h"

namespace vantorelix::cli {

namespace fs = std::filesystem;

namespace {

std::string remedy(session::Failure::Kind kind, const std::string& file) {
  using Kind = session::Failure::Kind;
  if (kind == Kind::no_match)
    return "; see 'vantorelix info " + file + " --all' for the names, and quote patterns with * or ?";
  if (kind == Kind::nothing_followed)
    return "; 'vantorelix info " + file + "' shows what drives its objects: bake that before saving, or use --all";
  if (kind == Kind::nothing_animated) return "; name objects with --select, or use --all for every object";
  if (kind == Kind::no_object) return "; open a scene with transforms or joints";
  return "; exclude fewer with --exclude";
}

}  // namespace

std::string format_name(standalone::Format format) {
  using standalone::Format;
  return format == Format::maya_ascii ? "Maya ASCII"
         : format == Format::bvh      ? "BVH"
         : format == Format::fbx      ? "FBX"
         : format == Format::samples  ? "samples"
                                      : "glTF";
}

std::string warning_text(const standalone::Warning& warning) {
  return warning.count == 1 ? warning.kind : warning.kind + " (" + std::to_string(warning.count) + " times)";
}

standalone::Scene load_scene(const SceneOptions& wanted, Terminal& terminal, bool bounds, standalone::Format* format) {
  const fs::path file = wanted.file;
  standalone::ReadOptions options = wanted.read_options();
  if (const auto named = options.format ? options.format : standalone::format_by_extension(file))
    wanted.check_format(*named);
  options.bounds = bounds;
  options.recognised = [&](standalone::Format found) {
    wanted.check_format(found);
    if (format) *format = found;
  };
  std::error_code ignored;
  if (file != standalone::kStandardInput && !fs::exists(file, ignored))
    throw Failure(file.string() + ": no such file; check the path");
  if (fs::is_directory(file, ignored)) throw Failure(file.string() + ": is a folder; name a scene file in it");
  options.progress = [&](std::uint64_t done, std::uint64_t total) {
    check_interrupt();
    terminal.progress("reading " + file.filename().string() +
                      (total == 0 ? "" : " " + std::to_string(done * 100 / total) + " %"));
  };
  standalone::Scene scene = standalone::read_scene(file, options);
  terminal.end_progress();
  for (const auto& warning : scene.warnings.all())
    terminal.warn(file.string() + ": " + warning_text(warning), {file.string()});
  return scene;
}

std::vector<standalone::NodeId> choose_objects(const standalone::Scene& scene, const SceneOptions& options) {
  try {
    return session::choose(scene, options.selection);
  } catch (const session::Failure& failure) {
    if (failure.kind == session::Failure::Kind::bad_pattern)
      throw UsageError(failure.what() + std::string("; write [[], [{] or [}] for one that is a part of a name"));
    throw Failure(options.file + ": " + failure.what() + remedy(failure.kind, options.file));
  }
}

session::Options session_options(Terminal& terminal) {
  session::Options options;
  options.cancelled = interrupted;
  options.progress = [&terminal](std::size_t number, std::size_t count) {
    terminal.progress("sampling, trail " + std::to_string(number) + " of " + std::to_string(count));
  };
  return options;
}

}  // namespace vantorelix::cli
