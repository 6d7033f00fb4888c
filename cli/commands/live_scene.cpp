#include "cli/commands/live_scene.h"

#include <array>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>

#include "base/file.h"
#include "cli/commands/scene_file.h"
#include "cli/terminal/failure.h"

namespace vantorelix::cli {

namespace fs = std::filesystem;

namespace {

void check_options(const TrailOptions& options) {
  const auto refuse = [](const char* option, bool used, const char* why) {
    if (used) throw UsageError(std::string(option) + ": a live page " + why + "; leave it out, or leave out --live");
  };
  refuse("--compare", options.compare.wanted(), "compares nothing");
  refuse("--preferences", !options.preferences.empty(), "reads no preferences");
  refuse("--format", !options.scene.format.empty(), "goes by the scene's name and content");
  refuse("-", options.scene.file == standalone::kStandardInput, "needs a file");
}

std::string content_of(const fs::path& path) {
  const File file = open_file(path, "rb");
  if (!file) throw Failure(path.string() + ": cannot be read (" + std::strerror(errno) + "); check its permissions");
  std::string content;
  std::array<char, 1 << 16> block;
  while (const std::size_t count = std::fread(block.data(), 1, block.size(), file.get()))
    content.append(block.data(), count);
  if (std::ferror(file.get()) != 0) throw Failure(path.string() + ": cannot be read to its end; check the disk");
  return content;
}

// The JSON of a glTF, or of a GLB, whose first part it is, with its length before it.
std::string_view gltf_json(std::string_view content) {
  constexpr std::size_t kHeader = 20, kLength = 12;
  if (!content.starts_with("glTF") || content.size() < kHeader) return content;
  std::size_t length = 0;
  for (std::size_t i = 4; i-- > 0;) length = length << 8 | static_cast<unsigned char>(content[kLength + i]);
  return content.substr(kHeader, length);
}

std::string without_percents(const std::string& uri) {
  std::string name;
  for (std::size_t i = 0; i < uri.size(); ++i) {
    const bool coded = uri[i] == '%' && i + 2 < uri.size() &&
                       std::isxdigit(static_cast<unsigned char>(uri[i + 1])) != 0 &&
                       std::isxdigit(static_cast<unsigned char>(uri[i + 2])) != 0;
    name += coded ? static_cast<char>(std::stoi(uri.substr(i + 1, 2), nullptr, 16)) : uri[i];
    if (coded) i += 2;
  }
  return name;
}

// The names of the files that a glTF has its numbers in, relative to its folder. It was read already: those that are
// there lie in that folder or below it.
std::set<std::string> buffers_of(std::string_view content) {
  std::set<std::string> names;
  const auto json = nlohmann::json::parse(gltf_json(content), nullptr, false);
  if (!json.is_object() || !json.contains("buffers") || !json["buffers"].is_array()) return names;
  for (const auto& buffer : json["buffers"]) {
    if (!buffer.is_object() || !buffer.contains("uri") || !buffer["uri"].is_string()) continue;
    const auto uri = buffer["uri"].get<std::string>();
    if (!uri.starts_with("data:")) names.insert(without_percents(uri));
  }
  return names;
}

std::vector<LiveFile> files_of(const fs::path& scene, standalone::Format format) {
  std::vector<LiveFile> files = {{scene.filename().string(), content_of(scene)}};
  if (format != standalone::Format::gltf) return files;
  for (const std::string& name : buffers_of(files.front().bytes)) {
    const fs::path path = scene.parent_path() / fs::path(std::u8string(name.begin(), name.end()));
    std::error_code ignored;
    if (fs::is_regular_file(path, ignored)) files.push_back({name, content_of(path)});
  }
  return files;
}

}  // namespace

LiveScene live_scene(const TrailOptions& options, Terminal& terminal) {
  check_options(options);
  check_engine();
  standalone::Format format{};
  standalone::Scene scene = load_scene(options.scene, terminal, false, &format);
  options.scene.apply_range(scene, choose_objects(scene, options.scene).size());
  LiveScene live;
  live.name = options.scene.file;
  live.files = files_of(options.scene.file, format);
  live.take = options.scene.take;
  live.axis = options.scene.axis;
  live.unit = options.scene.unit;
  live.fps = parse_number(options.scene.fps).value_or(0.0);
  live.selection = options.scene.selection;
  live.samples_per_frame = options.samples_per_frame.value_or(0);
  const host::Value mode = options.settings().color_mode;
  if (!mode.is_none()) live.color_mode = mode.to_int();
  const FrameRange range = parse_range(options.scene.range).value_or(FrameRange{});
  live.first = range.first;
  live.last = range.last;
  live.frame = parse_number(options.frame);
  live.line_width = options.line_width;
  live.point_size = options.point_size;
  if (options.no_line) live.show_line = false;
  if (options.no_dots) live.show_dots = false;
  live.ghost = options.ghost;
  return live;
}

}  // namespace vantorelix::cli
