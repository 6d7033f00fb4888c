// The one plug-in that this host can load: the one that defines the viz node.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "standalone/scene/scene.h"

namespace vantorelix::standalone {

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
