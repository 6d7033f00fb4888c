#include "session/tables/measuring.h"

#include <algorithm>

namespace vantorelix::session {

namespace {

bool moves_alike(const TrailView& trail, const TrailReport& report) {
  const double rounding = kRounding * largest_coordinate(path_of(trail, report.fps));
  return report.fps == report.compared->fps && trail.compare->largest <= rounding;
}

Measured measured(const TrailView& trail, const TrailReport& report) {
  Measured result{measures_of(trail, report)};
  if (!trail.compare) return result;
  result.second = measures_of_second(trail, report);
  if (!moves_alike(trail, report)) result.changes = changes_of(result.measures, *result.second);
  return result;
}

}  // namespace

std::vector<Measured> measure(const TrailReport& report) {
  std::vector<Measured> result;
  result.reserve(report.trails.size());
  for (const TrailView& trail : report.trails) result.push_back(measured(trail, report));
  return result;
}

std::vector<std::size_t> ranked_by_change(const std::vector<Measured>& trails) {
  std::vector<std::size_t> order;
  for (std::size_t i = 0; i < trails.size(); ++i)
    if (!trails[i].changes.empty()) order.push_back(i);
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    return trails[a].changes.front().change > trails[b].changes.front().change;
  });
  return order;
}

std::vector<std::pair<std::string, std::string>> measure_units(const TrailReport& report) {
  const std::string unit = unit_text(report);
  std::vector<std::pair<std::string, std::string>> units;
  for (const MeasureField& field : measure_fields()) units.emplace_back(field.name, unit_of(field.dimension, unit));
  for (const char* name : {"mean_speed_per_frame", "top_speed_per_frame"})
    units.emplace_back(name, unit + " per frame");
  return units;
}

std::vector<double> measure_values(const Measures& measures, double fps) {
  std::vector<double> values;
  values.reserve(measure_fields().size() + 2);
  for (const MeasureField& field : measure_fields()) values.push_back(measures.*field.value);
  for (const double speed : {measures.mean_speed, measures.top_speed}) values.push_back(speed / fps);
  return values;
}

}  // namespace vantorelix::session
