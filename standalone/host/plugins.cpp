#include "standalone/host/plugins.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <utility>

#include "host/error.h"

namespace vantorelix::standalone {

namespace fs = std::filesystem;
using host::Value;

namespace viz_node {

namespace {

constexpr std::array<std::string_view, 5> kVectorArrays = {"points", "colors", "keyPoints", "keyColors", "keyTimes"};

const std::array<std::pair<std::string_view, Value>, 8>& plain_attributes() {
  static const std::array<std::pair<std::string_view, Value>, 8> attributes = {{
      {"startFrame", 0.0},
      {"frameStep", 1.0},
      {"lineWidth", 2.5},
      {"pointSize", 6.0},
      {"showLine", true},
      {"showDots", true},
      {"xrayMode", true},
      {"colorMode", 0},
  }};
  return attributes;
}

}  // namespace

bool is_vector_array(std::string_view attribute) {
  return std::find(kVectorArrays.begin(), kVectorArrays.end(), attribute) != kVectorArrays.end();
}

const Value* default_of(std::string_view attribute) {
  for (const auto& [name, value] : plain_attributes())
    if (name == attribute) return &value;
  return nullptr;
}

void define(Scene& scene) { scene.nodes.register_shape_type(kType, plain_attributes()); }

}  // namespace viz_node

namespace {

constexpr const char* kPlugin = "Vantorelix_plugin";
constexpr const char* kFile = "Vantorelix_plugin.py";

bool is_in(const std::vector<std::string>& folders) {
  return std::any_of(folders.begin(), folders.end(), [](const std::string& folder) {
    std::error_code unreadable;
    return fs::is_regular_file(fs::path(folder) / kFile, unreadable);
  });
}

}  // namespace

void Plugins::load(const std::string& path, const std::vector<std::string>& search_path) {
  if (loaded_ && (path == kFile || path == kPlugin || fs::path(path).filename() == kFile)) return;
  const bool bare = path == kFile || path == kPlugin;
  std::error_code unreadable;
  if (!fs::is_regular_file(path, unreadable) && !(bare && is_in(search_path)))
    throw host::Error("Plug-in, \"" + path + "\", was not found on MAYA_PLUG_IN_PATH.");
  if (!bare && fs::path(path).filename() != kFile)
    throw host::Error("Plug-in, \"" + path + "\", cannot be loaded: this host runs " + kFile + " only.");
  load_built_in();
}

void Plugins::load_built_in() {
  viz_node::define(scene_);
  loaded_ = true;
}

bool Plugins::is_loaded(const std::string& name) const { return loaded_ && (name == kPlugin || name == kFile); }

std::vector<std::string> Plugins::loaded() const {
  if (!loaded_) return {};
  return {kPlugin};
}

}  // namespace vantorelix::standalone
