#include "session/tables/columns.h"

#include <cmath>

#include "session/tables/measuring.h"

namespace vantorelix::session {

namespace {

double finite(double value) { return std::isfinite(value) ? value : kUnknown; }

struct Positions {
  std::vector<double>&x, &y, &z;

  void add(const std::vector<Vector>& points) const {
    for (const Vector& point : points) {
      x.push_back(finite(point.x));
      y.push_back(finite(point.y));
      z.push_back(finite(point.z));
    }
  }
};

void add_samples(Columns& columns, const Path& path) {
  Positions{columns.x, columns.y, columns.z}.add(path.points);
  for (const double step : path.steps) columns.speed.push_back(finite(step * path.rate()));
  columns.speed.resize(columns.x.size(), kUnknown);
  columns.sample_counts.push_back(path.points.size());
}

void add_keys(Columns& columns, const TrailView& trail) {
  Positions{columns.key_x, columns.key_y, columns.key_z}.add(*trail.key_points);
  columns.key_frame.insert(columns.key_frame.end(), trail.key_times.begin(), trail.key_times.end());
  columns.key_counts.push_back(trail.key_times.size());
}

void reserve(Columns& columns, const TrailReport& report) {
  std::size_t samples = 0, keys = 0;
  for (const TrailView& trail : report.trails) {
    samples += trail.points->size();
    keys += trail.key_times.size();
  }
  for (auto* column : {&columns.x, &columns.y, &columns.z, &columns.speed}) column->reserve(samples);
  for (auto* column : {&columns.key_frame, &columns.key_x, &columns.key_y, &columns.key_z}) column->reserve(keys);
}

}  // namespace

Columns columns_of(const TrailReport& report) {
  Columns columns;
  reserve(columns, report);
  const std::size_t trails = report.trails.size();
  for (std::size_t t = 0; t < trails; ++t) {
    const TrailView& trail = report.trails[t];
    const Path path = path_of(trail, report.fps);
    add_samples(columns, path);
    add_keys(columns, trail);
    const auto values = measure_values(measures_of(path, ground_of(report, trail.figure)), report.fps);
    columns.measures.resize(values.size() * trails);
    for (std::size_t m = 0; m < values.size(); ++m) columns.measures[m * trails + t] = finite(values[m]);
  }
  return columns;
}

}  // namespace vantorelix::session
