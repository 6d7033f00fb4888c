// Movements that are known as formulas, sampled as a trail is.
#pragma once

#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

#include "session/measures/path.h"

namespace vantorelix::support {

// `count` samples of a place at a time in seconds, `rate` a second.
template <class Place>
std::vector<Vector> sampled(std::size_t count, double rate, const Place& place) {
  std::vector<Vector> points;
  for (std::size_t i = 0; i < count; ++i) points.push_back(place(static_cast<double>(i) / rate));
  return points;
}

// A turn a second around y, going up by `rise` a second.
inline std::vector<Vector> helix(std::size_t count, double rate, double radius, double rise) {
  return sampled(count, rate, [&](double t) {
    const double angle = 2.0 * std::numbers::pi * t;
    return Vector{radius * std::cos(angle), rise * t, radius * std::sin(angle)};
  });
}

// From the origin to (far, 0, 0) within `seconds`, with the least jerk: how far along at a time.
inline double least_jerk(double far, double seconds, double time) {
  const double t = time / seconds;
  return far * (t * t * t * (10.0 + t * (-15.0 + 6.0 * t)));
}
inline std::vector<Vector> least_jerk_move(std::size_t count, double rate, double far) {
  const double seconds = static_cast<double>(count - 1) / rate;
  return sampled(count, rate, [&](double t) { return Vector{least_jerk(far, seconds, t), 0.0, 0.0}; });
}

inline session::Path path_at(const std::vector<Vector>& points, double fps, double start_frame = 0.0,
                             double frame_step = 1.0) {
  return {points, start_frame, frame_step, fps};
}

}  // namespace vantorelix::support
