#include <array>
#include <cmath>

#include "cli/output/text.h"
#include "cli/output/writers.h"

namespace vantorelix::cli {

void write_csv(TextSink& out, const session::TrailReport& report) {
  out << "source,sample,frame,x,y,z,r,g,b\n";
  for (const session::TrailView& trail : report.trails) {
    const std::string source = csv_text(trail.source);
    for (std::size_t i = 0; i < trail.points->size(); ++i) {
      const Vector& p = (*trail.points)[i];
      const Vector c = i < trail.colors->size() ? (*trail.colors)[i] : Vector{NAN, NAN, NAN};
      const double frame = trail.start_frame + static_cast<double>(i) * trail.frame_step;
      out << source << ',' << static_cast<std::int64_t>(i);
      for (const double value : {frame, p.x, p.y, p.z, c.x, c.y, c.z}) {
        out << ',';
        if (std::isfinite(value)) out << value;
      }
      out << '\n';
    }
  }
}

}  // namespace vantorelix::cli
