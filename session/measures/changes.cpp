#include "session/measures/changes.h"

#include <algorithm>
#include <cmath>

namespace vantorelix::session {

namespace {

double change_of(Dimension dimension, double before, double after) {
  if (std::isnan(before) || std::isnan(after)) return std::isnan(before) == std::isnan(after) ? 0.0 : 1.0;
  const double difference = std::abs(after - before);
  if (dimension == Dimension::share || difference == 0.0) return difference;
  return difference / std::max(std::abs(before), std::abs(after));
}

}  // namespace

std::vector<MeasureChange> changes_of(const Measures& before, const Measures& after) {
  std::vector<MeasureChange> changes;
  for (const MeasureField& field : measure_fields()) {
    if (field.dimension == Dimension::frame) continue;
    const double a = before.*field.value, b = after.*field.value;
    const double change = change_of(field.dimension, a, b);
    if (change > 0.0) changes.push_back({&field, a, b, change});
  }
  std::stable_sort(changes.begin(), changes.end(),
                   [](const MeasureChange& a, const MeasureChange& b) { return a.change > b.change; });
  return changes;
}

}  // namespace vantorelix::session
