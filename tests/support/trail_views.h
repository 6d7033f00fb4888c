// Trails as the writers get them, without an engine that made them.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "session/report.h"

namespace vantorelix::support {

inline Vectors shared(std::vector<Vector> values) {
  return std::make_shared<const std::vector<Vector>>(std::move(values));
}

// Green, of an object "|a", without keys.
inline session::TrailView trail_of(std::vector<Vector> points) {
  session::TrailView trail;
  trail.viz = "vlx_a_viz";
  trail.source = "|a";
  trail.name = "a";
  trail.colors = shared(std::vector<Vector>(points.size(), Vector{0, 1, 0}));
  trail.points = shared(std::move(points));
  trail.key_points = trail.key_colors = shared({});
  return trail;
}

// Of one such trail, with a name that has to be quoted and one that is not UTF-8.
inline session::TrailReport report_of(std::vector<Vector> points) {
  session::TrailView trail = trail_of(std::move(points));
  trail.source = "|a,\"b\"";
  trail.name = "caf\xE9";
  session::TrailReport report{"a.ma", 24.0, 0.0, static_cast<double>(trail.points->size() - 1), "cm", 'y', {}};
  report.trails.push_back(trail);
  return report;
}

}  // namespace vantorelix::support
