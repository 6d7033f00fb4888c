#include "cli/args/selection.h"

#include <unordered_set>

#include "cli/terminal/failure.h"
#include "standalone/formats/reader.h"

namespace vantorelix::cli {

using standalone::NodeId;
using standalone::Scene;

namespace {

std::vector<NodeId> matching(const Scene& scene, const std::string& pattern, const std::string& file) {
  std::vector<NodeId> found;
  for (const NodeId node : standalone::match_in_file(scene, pattern)) {
    if (scene.nodes.is_transform(node))
      found.push_back(node);
    else if (scene.nodes.is_shape(node) && scene.nodes.parent(node) != standalone::kWorld)
      found.push_back(scene.nodes.parent(node));
  }
  if (found.empty())
    throw Failure(file + ": no object matches '" + pattern + "'; see 'vantorelix info " + file +
                  " --all' for the names, and quote patterns with * or ?");
  return found;
}

std::vector<NodeId> transforms(const Scene& scene, bool all) {
  std::vector<NodeId> found;
  for (const NodeId node : scene.nodes.all())
    if (scene.nodes.is_transform(node) && (all || scene.evaluation.is_animated(node))) found.push_back(node);
  return found;
}

// What to say of a scene in which nothing moves: it may be still, or moved by what is not evaluated.
std::string nothing_animated(const Scene& scene, const std::string& file) {
  for (const NodeId node : transforms(scene, true))
    if (!scene.evaluation.not_followed(node).empty())
      return file + ": nothing that can be followed is animated; 'vantorelix info " + file +
             "' shows what drives its objects: bake that before saving, or use --all";
  return file + ": nothing is animated; name objects with --select, or use --all for every object";
}

}  // namespace

std::vector<NodeId> choose(const Scene& scene, const Selection& selection, const std::string& file) {
  std::vector<NodeId> chosen;
  std::unordered_set<NodeId> seen;
  const auto add = [&](const std::vector<NodeId>& nodes) {
    for (const NodeId node : nodes)
      if (seen.insert(node).second) chosen.push_back(node);
  };
  for (const std::string& pattern : selection.patterns) add(matching(scene, pattern, file));
  if (selection.all) add(transforms(scene, true));
  if (!selection.patterns.empty() || selection.all) {
    if (chosen.empty()) throw Failure(file + ": holds no object; open a scene with transforms or joints");
    return chosen;
  }
  add(transforms(scene, false));
  if (chosen.empty()) throw Failure(nothing_animated(scene, file));
  return chosen;
}

}  // namespace vantorelix::cli
