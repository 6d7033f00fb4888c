// Which objects of a scene somebody means.
#pragma once

#include <string>
#include <vector>

#include "standalone/scene/scene.h"

namespace vantorelix::session {

// Patterns are those of PathPattern (base/pattern.h), over the paths of a scene's names and over those of its names in
// the file. One that is exactly the name or path of an object stands for that object, and then for no other: names in
// files may hold brackets and braces. One that matches a shape stands for its transform, unless it has "**".
struct Selection {
  std::vector<std::string> patterns;  // none: what is animated
  bool all = false;                   // every transform
  std::vector<std::string> exclude;   // what is left out of it; one that matches nothing has no effect
  bool ignore_case = false;           // of the letters A to Z, in all the patterns
};

// The transforms chosen, each once: in the order of the patterns, then of the scene. Throws Failure when nothing is
// chosen, when one of `patterns` matches nothing, or when one is not valid.
std::vector<standalone::NodeId> choose(const standalone::Scene& scene, const Selection& selection);

}  // namespace vantorelix::session
