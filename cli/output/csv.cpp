#include <algorithm>
#include <cmath>
#include <utility>

#include "cli/output/text.h"
#include "cli/output/writers.h"

namespace vantorelix::cli {

namespace {

constexpr std::pair<std::string_view, CsvColumn> kCsvColumns[] = {{"speed", CsvColumn::speed}, {"key", CsvColumn::key}};

// How many keys belong to each sample: a key between two to the nearer one, or the first where both are as near.
std::vector<std::int64_t> keys_by_sample(const session::TrailView& trail) {
  std::vector<std::int64_t> keys(trail.points->size(), 0);
  if (keys.empty()) return keys;
  for (const double time : trail.key_times) {
    const double at = std::ceil((time - trail.start_frame) / trail.frame_step - 0.5);
    ++keys[static_cast<std::size_t>(std::clamp(at, 0.0, static_cast<double>(keys.size() - 1)))];
  }
  return keys;
}

void write_number(TextSink& out, double value) {
  out << ',';
  if (std::isfinite(value)) out << value;
}

}  // namespace

std::optional<CsvColumn> csv_column(std::string_view name) {
  for (const auto& [known, column] : kCsvColumns)
    if (known == name) return column;
  return std::nullopt;
}

void write_csv(TextSink& out, const session::TrailReport& report, const std::vector<CsvColumn>& columns) {
  out << "source,sample,frame,x,y,z,r,g,b";
  for (const CsvColumn wanted : columns)
    for (const auto& [name, column] : kCsvColumns)
      if (column == wanted) out << ',' << name;
  out << '\n';
  for (const session::TrailView& trail : report.trails) {
    const std::string source = csv_text(trail.source);
    const auto keys = keys_by_sample(trail);
    const session::Path path = session::path_of(trail, report.fps);
    const auto& steps = path.steps;
    for (std::size_t i = 0; i < trail.points->size(); ++i) {
      const Vector& p = (*trail.points)[i];
      const Vector c = i < trail.colors->size() ? (*trail.colors)[i] : Vector{NAN, NAN, NAN};
      const double frame = trail.start_frame + static_cast<double>(i) * trail.frame_step;
      out << source << ',' << static_cast<std::int64_t>(i);
      for (const double value : {frame, p.x, p.y, p.z, c.x, c.y, c.z}) write_number(out, value);
      for (const CsvColumn column : columns)
        if (column == CsvColumn::key)
          out << ',' << keys[i];
        else
          write_number(out, i < steps.size() ? steps[i] * path.rate() : session::kUnknown);
      out << '\n';
    }
  }
}

}  // namespace vantorelix::cli
