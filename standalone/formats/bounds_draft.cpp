#include "standalone/formats/bounds_draft.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "standalone/formats/reader.h"

namespace vantorelix::standalone {

BoundsDraft::BoundsDraft(const Scene& scene, NodeId node) {
  const Vectors bounds = scene.attributes.vectors(node, kBounds);
  if (!bounds) return;
  for (const Vector& corner : *bounds) add(corner);
}

void BoundsDraft::add(const Vector& p) {
  if (!is_finite(p)) return;
  if (empty_) low_ = high_ = p;
  empty_ = false;
  low_ = {std::min(low_.x, p.x), std::min(low_.y, p.y), std::min(low_.z, p.z)};
  high_ = {std::max(high_.x, p.x), std::max(high_.y, p.y), std::max(high_.z, p.z)};
}

void BoundsDraft::assign_to(Scene& scene, NodeId node) const {
  const Vector& low = empty_ ? kUnitCube[0] : low_;
  const Vector& high = empty_ ? kUnitCube[1] : high_;
  scene.attributes.set_vectors(node, kBounds,
                               std::make_shared<const std::vector<Vector>>(std::vector<Vector>{low, high}));
}

void mark_deformed(Scene& scene, NodeId node) {
  scene.attributes.set_vectors(node, kBounds, std::make_shared<const std::vector<Vector>>());
}

}  // namespace vantorelix::standalone
