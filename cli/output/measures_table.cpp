#include <algorithm>
#include <cmath>

#include "base/number_text.h"
#include "base/utf8.h"
#include "cli/output/columns.h"
#include "cli/output/measure_writers.h"
#include "cli/output/text.h"

namespace vantorelix::cli {

namespace {

using session::Measured;
using session::MeasureField;
using session::TrailReport;
using Row = std::vector<std::string>;

void write_values(TextSink& out, const session::Measures& measures) {
  for (const MeasureField& field : session::measure_fields()) {
    out << ',';
    if (std::isfinite(measures.*field.value)) out << measures.*field.value;
  }
}

// Where there is no second scene's object there is nothing to say of it.
void write_second(TextSink& out, const session::TrailView& trail, const Measured& measured) {
  if (!measured.second) {
    out << std::string(3 + session::measure_fields().size(), ',');
    return;
  }
  out << ',' << csv_text(trail.compare->source) << ',';
  if (!measured.changes.empty()) out << measured.changes.front().field->name;
  out << ',';
  if (!measured.changes.empty()) out << measured.changes.front().change;
  write_values(out, *measured.second);
}

std::string heading(const char* name) {
  std::string text = name;
  std::replace(text.begin(), text.end(), '_', ' ');
  return text;
}

std::string readable_value(double value, session::Dimension dimension) {
  return std::isfinite(value) ? readable(value, dimension == session::Dimension::frame ? 8 : 4) : "-";
}

std::string footer(const TrailReport& report) {
  const std::string unit = session::unit_text(report);
  return "\nlengths in " + unit + ", speeds in " + unit + " a second, " + readable(report.fps, 6) +
         " frames a second\n";
}

}  // namespace

void write_measures_csv(TextSink& out, const TrailReport& report, const std::vector<Measured>& all) {
  out << "source";
  for (const MeasureField& field : session::measure_fields()) out << ',' << field.name;
  if (report.compared) {
    out << ",compare_source,changed,change";
    for (const MeasureField& field : session::measure_fields()) out << ",compare_" << field.name;
  }
  out << '\n';
  for (std::size_t i = 0; i < all.size(); ++i) {
    out << csv_text(report.trails[i].source);
    write_values(out, all[i].measures);
    if (report.compared) write_second(out, report.trails[i], all[i]);
    out << '\n';
  }
}

std::string measures_table(const TrailReport& report, const std::vector<Measured>& all) {
  std::vector<Row> rows = {{"trail"}};
  for (const MeasureField& field : session::measure_fields())
    if (field.brief) rows[0].push_back(heading(field.name));
  rows[0].push_back("");
  for (std::size_t i = 0; i < all.size(); ++i) {
    const session::TrailView& trail = report.trails[i];
    Row row = {valid_utf8(trail.source)};
    for (const MeasureField& field : session::measure_fields())
      if (field.brief) row.push_back(readable_value(all[i].measures.*field.value, field.dimension));
    row.push_back(trail.warnings.empty() ? "" : "! not exact");
    rows.push_back(row);
  }
  std::vector<bool> right(rows[0].size(), true);
  right.front() = right.back() = false;
  return columns(rows, right) + footer(report);
}

std::string changes_table(const TrailReport& report, const std::vector<Measured>& all) {
  std::vector<Row> rows = {{"trail", "changed most", "before", "after", "change", "largest distance", "at frame", ""}};
  const auto order = session::ranked_by_change(all);
  for (const std::size_t i : order) {
    const session::TrailView& trail = report.trails[i];
    const session::MeasureChange& change = all[i].changes.front();
    const session::Dimension dimension = change.field->dimension;
    rows.push_back({valid_utf8(trail.source), heading(change.field->name), readable_value(change.before, dimension),
                    readable_value(change.after, dimension), fixed(100.0 * change.change, 1) + " %",
                    readable_value(trail.compare->largest, session::Dimension::length),
                    readable_value(trail.compare->frame, session::Dimension::frame),
                    trail.warnings.empty() ? "" : "! not exact"});
  }
  const auto compared = static_cast<std::size_t>(
      std::count_if(all.begin(), all.end(), [](const Measured& each) { return each.second.has_value(); }));
  return columns(rows, {false, false, true, true, true, true, true, false}) + "\n" + std::to_string(order.size()) +
         " of " + counted(compared, "trail") + " changed" + footer(report);
}

}  // namespace vantorelix::cli
