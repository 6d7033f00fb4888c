// Which objects a command works on.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "standalone/scene/scene.h"

namespace vantorelix::cli {

struct Selection {
  std::vector<std::string> patterns;  // none: what is animated
  bool all = false;                   // every transform
};

// The transforms chosen, each once: in the order of the patterns, then of the scene. A pattern that matches a shape
// stands for its transform. Throws Failure when nothing is chosen or a pattern matches nothing; `file` stands in
// its text.
std::vector<standalone::NodeId> choose(const standalone::Scene& scene, const Selection& selection,
                                       const std::string& file);

}  // namespace vantorelix::cli
