// The one plug-in that this host can load: the one that defines the viz node.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "standalone/scene/scene.h"

namespace vantorelix::standalone {

// Type "vantorelix": vector arrays points, colors, keyPoints, keyColors, keyTimes; doubles startFrame, frameStep,
// lineWidth, pointSize; booleans showLine, showDots, xrayMode; integer colorMode.
namespace viz_node {

inline constexpr const char* kType = "vantorelix";

bool is_vector_array(std::string_view attribute);
// The type's own default for a plain attribute; null for anything else. Its kind is the attribute's type.
const host::Value* default_of(std::string_view attribute);
// Makes the type known to a scene, with its plain attributes.
void define(Scene& scene);

}  // namespace viz_node

class Plugins {
 public:
  explicit Plugins(Scene& scene) : scene_(scene) {}

  // Loads Vantorelix_plugin.py: a path to an existing file of that name, or the bare name, with or without ".py",
  // when a folder of `search_path` holds it. Nothing happens when it is loaded already. Throws host::Error when the
  // file is not there or is another plug-in.
  void load(const std::string& path, const std::vector<std::string>& search_path);
  // As if it had been loaded before the session.
  void load_built_in();
  bool is_loaded(const std::string& name) const;
  std::vector<std::string> loaded() const;

 private:
  Scene& scene_;
  bool loaded_ = false;
};

}  // namespace vantorelix::standalone
