#include <cmath>

#include "base/number_text.h"
#include "base/utf8.h"
#include "cli/output/columns.h"
#include "cli/output/text.h"
#include "cli/output/writers.h"
#include "session/measures/kinematics.h"

namespace vantorelix::cli {

namespace {

using Row = std::vector<std::string>;

void add_comparison(Row& row, const std::optional<session::Comparison>& compare) {
  const bool known = compare && !std::isnan(compare->largest);
  row.push_back(known ? readable(compare->largest) : "-");
  row.push_back(known ? readable(compare->frame, 8) : "-");
}

}  // namespace

std::string trail_table(const session::TrailReport& report) {
  std::vector<Row> rows = {{"trail", "samples", "frames", "keys", "length", "slowest", "mean speed", "top speed"}};
  if (report.compared) rows[0].insert(rows[0].end(), {"largest distance", "at frame"});
  for (const session::TrailView& trail : report.trails) {
    const session::Travel m = session::travel_of(session::path_of(trail, report.fps));
    const double last = trail.start_frame + static_cast<double>(trail.points->size() - 1) * trail.frame_step;
    Row row = {valid_utf8(trail.source),
               std::to_string(trail.points->size()),
               readable(trail.start_frame, 8) + " to " + readable(last, 8),
               std::to_string(trail.key_times.size()),
               readable(m.length),
               readable(m.slowest),
               readable(m.mean_speed),
               readable(m.top_speed)};
    if (report.compared) add_comparison(row, trail.compare);
    row.push_back(trail.warnings.empty() ? "" : "! not exact");
    rows.push_back(row);
  }
  rows[0].push_back("");
  std::vector<bool> right(rows[0].size(), true);
  right[0] = right[2] = right.back() = false;
  return columns(rows, right) + "\nlengths in " + session::unit_text(report) + ", speeds in " +
         session::unit_text(report) + " a second, " + readable(report.fps, 6) + " frames a second\n";
}

}  // namespace vantorelix::cli
