#include "session/measures/path.h"

#include <algorithm>
#include <cmath>

#include "base/mathematics/mathematics.h"

namespace vantorelix::session {

Path::Path(const std::vector<Vector>& positions, double first_frame, double frames_a_step, double frames_a_second)
    : points(positions), start_frame(first_frame), frame_step(frames_a_step), fps(frames_a_second) {
  steps.reserve(points.size());
  for (std::size_t i = 1; i < points.size(); ++i) {
    const Vector &a = points[i - 1], &b = points[i];
    const double step = base::hypot(b.x - a.x, b.y - a.y, b.z - a.z);
    steps.push_back(std::isfinite(step) ? step : kUnknown);
  }
}

double largest_coordinate(const Path& path) {
  double largest = 0.0;
  for (const Vector& p : path.points)
    if (is_finite(p)) largest = std::max({largest, std::abs(p.x), std::abs(p.y), std::abs(p.z)});
  return largest;
}

double mean_active_step(const Path& path) {
  double sum = 0.0;
  std::size_t active = 0;
  for (const double step : path.steps) {
    if (!(step > kNoStep)) continue;
    sum += step;
    ++active;
  }
  return active == 0 ? 0.0 : sum / static_cast<double>(active);
}

}  // namespace vantorelix::session
