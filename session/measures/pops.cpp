#include "session/measures/pops.h"

#include <algorithm>
#include <cmath>

#include "base/mathematics/mathematics.h"

namespace vantorelix::session {

namespace {

constexpr std::size_t kSamplesAround = 2;  // samples on either side

// Of one coordinate.
double off(double a, double b, double here, double c, double d) { return here - (4.0 * (b + c) - (a + d)) / 6.0; }

// How far each sample is off; not a number where that is not known.
std::vector<double> deviations_of(const std::vector<Vector>& p) {
  std::vector<double> result(p.size(), kUnknown);
  for (std::size_t i = kSamplesAround; i + kSamplesAround < p.size(); ++i) {
    const Vector &a = p[i - 2], &b = p[i - 1], &here = p[i], &c = p[i + 1], &d = p[i + 2];
    const double distance =
        base::hypot(off(a.x, b.x, here.x, c.x, d.x), off(a.y, b.y, here.y, c.y, d.y), off(a.z, b.z, here.z, c.z, d.z));
    if (std::isfinite(distance)) result[i] = distance;
  }
  return result;
}

// Of the values that are known; 0 where there are none.
double median_of(std::vector<double> values) {
  values.erase(std::remove_if(values.begin(), values.end(), [](double value) { return std::isnan(value); }),
               values.end());
  if (values.empty()) return 0.0;
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  if (values.size() % 2 != 0) return *middle;
  return (*std::max_element(values.begin(), middle) + *middle) / 2.0;
}

// The first of equals counts.
bool is_peak(const std::vector<double>& values, std::size_t at) {
  for (std::size_t i = at - kSamplesAround; i <= at + kSamplesAround; ++i)
    if (i < at ? values[i] >= values[at] : values[i] > values[at]) return false;
  return true;
}

}  // namespace

std::vector<Pop> pops_of(const Path& path) {
  const double mean = mean_active_step(path);
  if (mean == 0.0) return {};
  const auto deviations = deviations_of(path.points);
  const double usual = std::max({median_of(deviations), kSlow * mean, kRounding * largest_coordinate(path)});
  std::vector<Pop> pops;
  for (std::size_t i = kSamplesAround; i + kSamplesAround < deviations.size(); ++i)
    if (deviations[i] > 0.0 && is_peak(deviations, i))
      pops.push_back({path.frame(i), deviations[i] / usual, deviations[i]});
  std::stable_sort(pops.begin(), pops.end(), [](const Pop& a, const Pop& b) { return a.score > b.score; });
  pops.resize(std::min(pops.size(), kMostPops));
  return pops;
}

}  // namespace vantorelix::session
