// The triple that the whole system is made of: a position, a colour, a key marker.
#pragma once

#include <cmath>
#include <memory>
#include <vector>

namespace vantorelix {

// Three doubles. As a position: world space, the scene's linear unit. As a colour: r, g, b in 0..1.
// As a key-time vector: (frame, 0, 0).
struct Vector {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;

  friend bool operator==(const Vector&, const Vector&) = default;
};

inline bool is_finite(const Vector& v) { return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z); }

// A finished array of triples, shared and never changed again: the engine's work item and the viz node
// hold the same storage, so that pushing a million points copies none. Never null where a function takes one.
using Vectors = std::shared_ptr<const std::vector<Vector>>;

}  // namespace vantorelix
