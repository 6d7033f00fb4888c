#include "session/measures/smoothness.h"

#include <algorithm>
#include <cmath>

#include "base/mathematics/mathematics.h"
#include "session/measures/spectrum.h"

namespace vantorelix::session {

namespace {

constexpr double kHighestFrequency = 10.0;
constexpr double kLeastMagnitude = 0.05;

// The number of the highest frequency that counts. `spectrum` is scaled.
std::size_t cut_off(const std::vector<double>& spectrum, double step) {
  const double within = std::min(std::floor(kHighestFrequency / step), static_cast<double>(spectrum.size() - 1));
  auto last = static_cast<std::size_t>(within);
  while (last > 0 && spectrum[last] < kLeastMagnitude) --last;
  return last;
}

// The third difference of four points from this one on.
Vector third_difference(const Vector* p) {
  const auto of = [](double a, double b, double c, double d) { return (d - a) - 3.0 * (c - b); };
  return {of(p[0].x, p[1].x, p[2].x, p[3].x), of(p[0].y, p[1].y, p[2].y, p[3].y), of(p[0].z, p[1].z, p[2].z, p[3].z)};
}

// The sum over all ways of the third difference there, squared.
double jerk_squared(const Path& path) {
  const auto& points = path.points;
  const double least = 0x1p-49 * largest_coordinate(path);  // eight roundings of a coordinate
  double sum = 0.0;
  const std::size_t count = points.size() - 3;
  for (std::size_t i = 0; i < count; ++i) {
    const Vector d = third_difference(&points[i]);
    const double length = base::hypot(d.x, d.y, d.z);
    const double times = i == 0 || i + 1 == count ? 2.0 : 1.0;
    if (length > least) sum += times * (length * length);
  }
  return sum;
}

}  // namespace

double sparc(const std::vector<double>& speeds, double rate) {
  if (speeds.size() < kLeastSpeeds) return kUnknown;
  auto spectrum = padded_spectrum(speeds);
  const double whole = spectrum[0];  // the largest, since no speed is below zero
  if (!(whole > 0.0) || !std::isfinite(whole)) return kUnknown;
  for (double& magnitude : spectrum) magnitude /= whole;
  const double step = rate / static_cast<double>(2 * (spectrum.size() - 1));
  const std::size_t last = cut_off(spectrum, step);
  if (last == 0) return kUnknown;
  double length = 0.0;
  for (std::size_t k = 1; k <= last; ++k)
    length += base::hypot(1.0 / static_cast<double>(last), spectrum[k] - spectrum[k - 1]);
  return -length;
}

double log_dimensionless_jerk(const Path& path) {
  const auto& steps = path.steps;
  if (steps.size() < kLeastSpeeds) return kUnknown;
  const double fastest = *std::max_element(steps.begin(), steps.end());
  const double jerk = jerk_squared(path);
  const bool known = std::none_of(steps.begin(), steps.end(), [](double step) { return std::isnan(step); });
  if (!known || !(fastest > kNoStep) || !(jerk > 0.0)) return kUnknown;
  // With h the seconds of a step, T = count h, v = step / h, and the integral is the sum of (difference / h^3)^2 h: all
  // h cancel.
  const auto count = static_cast<double>(steps.size());
  return -base::log(count * count * count * jerk / (fastest * fastest));
}

}  // namespace vantorelix::session
