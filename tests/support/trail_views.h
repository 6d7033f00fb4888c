// Trails as the writers get them, without an engine that made them.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "cli/trail_report.h"

namespace vantorelix::support {

inline Vectors shared(std::vector<Vector> values) {
  return std::make_shared<const std::vector<Vector>>(std::move(values));
}

// Green, of an object "|a", without keys.
inline cli::TrailView trail_of(std::vector<Vector> points) {
  cli::TrailView trail;
  trail.viz = "vlx_a_viz";
  trail.source = "|a";
  trail.name = "a";
  trail.colors = shared(std::vector<Vector>(points.size(), Vector{0, 1, 0}));
  trail.points = shared(std::move(points));
  trail.key_points = trail.key_colors = shared({});
  return trail;
}

}  // namespace vantorelix::support
