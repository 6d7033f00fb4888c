#include "session/measures/kinematics.h"

#include <cmath>

#include "base/mathematics/mathematics.h"

namespace vantorelix::session {

namespace {

constexpr std::size_t kReach = 3;  // samples on either side

Vector operator+(const Vector& a, const Vector& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
Vector operator-(const Vector& a, const Vector& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Vector operator*(double s, const Vector& v) { return {s * v.x, s * v.y, s * v.z}; }

double length_of(const Vector& v) {
  const double length = base::hypot(v.x, v.y, v.z);
  return std::isfinite(length) ? length : kUnknown;
}

Vector cross(const Vector& a, const Vector& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

struct Derivatives {
  Vector first, second, third;
};

// `p` has three samples on either side, `rate` samples a second.
Derivatives derivatives_at(const Vector* p, double rate) {
  const Vector near = p[1] - p[-1], middle = p[2] - p[-2], far = p[3] - p[-3];
  const Vector near_sum = p[1] + p[-1], middle_sum = p[2] + p[-2], far_sum = p[3] + p[-3];
  return {rate / 60.0 * (45.0 * near - 9.0 * middle + far),
          rate * rate / 180.0 * (270.0 * near_sum - 27.0 * middle_sum + 2.0 * far_sum - 490.0 * p[0]),
          rate * rate * rate / 8.0 * (8.0 * middle - 13.0 * near - far)};
}

double curvature_of(const Derivatives& d, double least_speed) {
  const double speed = length_of(d.first);
  if (!(speed > 0.0 && speed >= least_speed)) return kUnknown;
  return length_of(cross(d.first, d.second)) / (speed * speed * speed);
}

}  // namespace

Travel travel_of(const Path& path) {
  Travel travel;
  const auto& steps = path.steps;
  double shortest = 0.0, longest = 0.0;
  for (std::size_t i = 0; i < steps.size(); ++i) {
    if (std::isnan(steps[i])) continue;
    if (travel.steps == 0 || steps[i] < shortest) shortest = steps[i];
    if (travel.steps == 0 || steps[i] > longest) {
      longest = steps[i];
      travel.top_step = i;
    }
    ++travel.steps;
    travel.length += steps[i];
  }
  if (travel.steps == 0) return travel;
  travel.slowest = shortest * path.rate();
  travel.top_speed = longest * path.rate();
  travel.mean_speed = travel.length / static_cast<double>(travel.steps) * path.rate();
  return travel;
}

Kinematics kinematics_of(const Path& path) {
  const std::size_t count = path.points.size();
  const std::vector<double> unknown(count, kUnknown);
  Kinematics result{unknown, unknown, unknown};
  const double least_speed = kTurning * travel_of(path).mean_speed;
  for (std::size_t i = kReach; i + kReach < count; ++i) {
    if (!is_finite(path.points[i])) continue;  // which only the second derivative would notice
    const Derivatives d = derivatives_at(&path.points[i], path.rate());
    result.acceleration[i] = length_of(d.second);
    result.jerk[i] = length_of(d.third);
    result.curvature[i] = curvature_of(d, least_speed);
  }
  return result;
}

Extremes extremes_of(const std::vector<double>& values, const Path& path) {
  Extremes result;
  double sum = 0.0;
  std::size_t known = 0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (std::isnan(values[i])) continue;
    sum += values[i];
    ++known;
    if (!(values[i] >= result.least)) {
      result.least = values[i];
      result.least_frame = path.frame(i);
    }
    if (!(values[i] <= result.top)) {
      result.top = values[i];
      result.top_frame = path.frame(i);
    }
  }
  if (known != 0) result.mean = sum / static_cast<double>(known);
  return result;
}

double spacing_variation(const Path& path) {
  const Travel travel = travel_of(path);
  if (travel.steps < 2 || !(travel.length > kNoStep)) return kUnknown;
  const double mean = travel.length / static_cast<double>(travel.steps);
  double squares = 0.0;
  for (const double step : path.steps)
    if (!std::isnan(step)) squares += (step - mean) * (step - mean);
  return std::sqrt(squares / static_cast<double>(travel.steps)) / mean;
}

}  // namespace vantorelix::session
