#include "base/number_text.h"
#include "base/utf8.h"
#include "cli/output/columns.h"
#include "cli/output/text.h"
#include "cli/output/writers.h"

namespace vantorelix::cli {

std::string trail_table(const session::TrailReport& report) {
  std::vector<std::vector<std::string>> rows = {
      {"trail", "samples", "frames", "keys", "length", "slowest", "mean", "fastest", ""}};
  for (const session::TrailView& trail : report.trails) {
    const session::TrailMeasure m = session::measure(trail, report.fps);
    const double last = trail.start_frame + static_cast<double>(trail.points->size() - 1) * trail.frame_step;
    rows.push_back({valid_utf8(trail.source), std::to_string(trail.points->size()),
                    readable(trail.start_frame, 8) + " to " + readable(last, 8), std::to_string(trail.key_times.size()),
                    readable(m.length), readable(m.slowest), readable(m.mean), readable(m.fastest),
                    trail.warnings.empty() ? "" : "! not exact"});
  }
  return columns(rows, {false, true, false, true, true, true, true, true, false}) + "\nlengths in " +
         session::unit_text(report) + ", speeds in " + session::unit_text(report) + " a second, " +
         readable(report.fps, 6) + " frames a second\n";
}

}  // namespace vantorelix::cli
