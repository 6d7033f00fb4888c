#include "session/statics.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <optional>

#include "base/mathematics/mathematics.h"
#include "standalone/formats/reader.h"

namespace vantorelix::session {

using standalone::NodeId;
using standalone::Scene;

namespace {

bool is_surface(const std::string& type) { return type == "mesh" || type == "nurbsSurface" || type == "subdiv"; }

using Corners = std::vector<Vector>;  // low and high

// Nothing where the reader did not look; no corners where the surface is deformed.
std::optional<Corners> found_by_reader(const Scene& scene, NodeId node) {
  const Vectors bounds = scene.attributes.vectors(node, standalone::kBounds);
  if (!bounds || (bounds->size() != 2 && !bounds->empty())) return std::nullopt;
  return *bounds;
}

// Of the first surface that a transform has; none where any is deformed, which may leave its original beside it.
Corners corners_of(const Scene& scene, NodeId transform) {
  std::optional<Corners> result = found_by_reader(scene, transform);
  for (const NodeId shape : scene.nodes.shapes(transform)) {
    if (!is_surface(scene.nodes.type(shape))) continue;
    const auto found = found_by_reader(scene, shape);
    if (found && found->empty()) return {};
    if (!result) result = found.value_or(Corners{standalone::kUnitCube[0], standalone::kUnitCube[1]});
  }
  return result.value_or(Corners{});
}

// The sum of what the three sides of the box are long in the world.
double size_of(const StaticBox& box) {
  const auto& m = box.world.m;
  const auto side = [&m](std::size_t row, double length) {
    return base::hypot(m[row][0], m[row][1], m[row][2]) * length;
  };
  return side(0, box.high.x - box.low.x) + side(1, box.high.y - box.low.y) + side(2, box.high.z - box.low.z);
}

void keep_largest(std::vector<StaticBox>& boxes) {
  if (boxes.size() <= kMaxStatics) return;
  std::vector<double> sizes;
  sizes.reserve(boxes.size());
  for (const StaticBox& box : boxes) sizes.push_back(size_of(box));
  std::nth_element(sizes.begin(), sizes.begin() + kMaxStatics - 1, sizes.end(), std::greater<>());
  const double least = sizes[kMaxStatics - 1];
  auto even = std::count(sizes.begin(), sizes.begin() + kMaxStatics, least);  // of the least size, this many stay
  const auto goes = [&](const StaticBox& box) {
    const double size = size_of(box);
    return size == least ? even-- <= 0 : size < least;
  };
  boxes.erase(std::remove_if(boxes.begin(), boxes.end(), goes), boxes.end());
}

}  // namespace

std::vector<StaticBox> static_boxes(const Scene& scene, double frame) {
  std::vector<StaticBox> boxes;
  for (const NodeId node : scene.nodes.all()) {
    if (!scene.nodes.is_transform(node) || scene.evaluation.is_animated(node)) continue;
    const Corners corners = corners_of(scene, node);
    if (corners.empty()) continue;
    StaticBox box{scene.names.long_name(node), scene.evaluation.world_matrix(node, frame), corners[0], corners[1]};
    if (std::isfinite(size_of(box)) && is_finite(box.world.translation())) boxes.push_back(std::move(box));
  }
  keep_largest(boxes);
  return boxes;
}

}  // namespace vantorelix::session
