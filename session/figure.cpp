#include "session/figure.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "session/measures/path.h"

namespace vantorelix::session {

using standalone::NodeId;
using standalone::Scene;

namespace {

// How often a figure is looked at, over the range.
constexpr int kLooks = 9;

// The topmost ancestor that is animated; the object itself where none is.
NodeId root_of(const Scene& scene, NodeId object) {
  NodeId root = object;
  for (NodeId node = object; node != standalone::kWorld; node = scene.nodes.parent(node))
    if (scene.evaluation.is_animated(node)) root = node;
  return root;
}

// The transforms of each figure, by its root.
using Parts = std::unordered_map<NodeId, std::vector<NodeId>>;

Parts parts_of(const Scene& scene, const std::vector<NodeId>& roots) {
  Parts parts;
  for (const NodeId root : roots) parts[root];
  for (const NodeId part : scene.nodes.all()) {
    if (!scene.nodes.is_transform(part)) continue;
    for (NodeId node = part; node != standalone::kWorld; node = scene.nodes.parent(node)) {
      const auto found = parts.find(node);
      if (found != parts.end()) found->second.push_back(part);
    }
  }
  return parts;
}

struct Box {
  Vector low{INFINITY, INFINITY, INFINITY}, high{-INFINITY, -INFINITY, -INFINITY};

  void include(const Vector& p) {
    if (!is_finite(p)) return;
    low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
  }
  double longest_side() const { return std::max({high.x - low.x, high.y - low.y, high.z - low.z}); }
};

Figure figure_of(const Scene& scene, const std::vector<NodeId>& parts) {
  if (parts.size() < 2) return {};
  const double first = scene.settings.playback_min(), last = scene.settings.playback_max();
  Figure figure{0.0, INFINITY};
  for (int i = 0; i < kLooks; ++i) {
    Box box;
    for (const NodeId part : parts)
      box.include(scene.evaluation.world_matrix(part, first + (last - first) * i / (kLooks - 1)).translation());
    figure.height = std::max(figure.height, box.longest_side());
    figure.floor = std::min(figure.floor, scene.settings.up_axis() == 'z' ? box.low.z : box.low.y);
  }
  return figure.height > 0.0 ? figure : Figure{};
}

}  // namespace

std::vector<Figure> figures_of(const Scene& scene, const std::vector<NodeId>& objects) {
  std::vector<NodeId> roots;
  for (const NodeId object : objects) roots.push_back(root_of(scene, object));
  std::unordered_map<NodeId, Figure> figures;
  for (const auto& [root, parts] : parts_of(scene, roots)) figures.emplace(root, figure_of(scene, parts));
  std::vector<Figure> result;
  for (const NodeId root : roots) result.push_back(figures.at(root));
  return result;
}

}  // namespace vantorelix::session
