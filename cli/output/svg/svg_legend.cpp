#include "cli/output/svg/svg_legend.h"
#include "base/number_text.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "cli/output/svg/svg_labels.h"
#include "cli/output/svg/svg_path.h"
#include "cli/output/text.h"
#include "engine/colour/colour.h"
#include "engine/state/constants.h"
#include "session/measures/kinematics.h"

namespace vantorelix::cli {

namespace {

constexpr double kRow = 18.0;
constexpr double kHead = 24.0;
// The table of measures stands beside the rest where there is so much room, else below it.
constexpr double kTable = 620.0, kBeside = 900.0;
constexpr double kSignWidth = 215.0, kNumberWidth = 185.0;
constexpr std::size_t kNumberLetters = 26;

void draw_text(TextSink& out, double x, double y, const char* classes, const std::string& text,
               const char* anchor = "start") {
  out << "<text class=\"" << classes << "\" x=\"" << pixel(x) << "\" y=\"" << pixel(y) << "\" text-anchor=\"" << anchor
      << "\">" << xml_text(text) << "</text>\n";
}

void draw_swatch(TextSink& out, double x, double y, const Vector& color) {
  out << "<path class=\"case\" stroke-width=\"6.6\" d=\"M" << pixel(x) << ' ' << pixel(y) << "h26\"/><path stroke=\""
      << hex_color(color) << "\" stroke-width=\"5\" d=\"M" << pixel(x) << ' ' << pixel(y) << "h26\"/>\n";
}

// The engine's ramp, with what a trail's usual speed and 2.5 times it look like.
void draw_ramp(TextSink& out, double x, double y, const Coloring& coloring) {
  constexpr double kWidth = 380.0;
  out << "<defs><linearGradient id=\"ramp\">";
  for (const RampStop& stop : _RAMP_STOPS)
    out << "<stop offset=\"" << stop.t << "\" stop-color=\"" << hex_color(speed_color(stop.t, coloring)) << "\"/>";
  out << "</linearGradient></defs>\n<rect x=\"" << pixel(x) << "\" y=\"" << pixel(y - 5.0) << "\" width=\""
      << pixel(kWidth) << "\" height=\"10\" rx=\"5\" fill=\"url(#ramp)\"/>\n";
  const double usual = x + kWidth / _SPACING_RED_MULT;
  draw_text(out, x, y + 20.0, "soft small", "at rest");
  draw_text(out, usual, y + 20.0, "soft small", "typical speed while moving", "middle");
  draw_text(out, x + kWidth, y + 20.0, "soft small", fixed(_SPACING_RED_MULT, 1) + "\u00d7", "end");
}

// Heading and samples of the mode that the trails are shown in; returns the y below.
double draw_meaning(TextSink& out, const Legend& legend, double x, double y) {
  const auto& trails = legend.report.trails;
  const std::int64_t mode = trails.empty() ? 0 : trails.front().color_mode;
  const auto head = [&](const char* text) { draw_text(out, x, y, "ink", text); };
  const auto sample = [&](int row, const Vector& color, const std::string& text) {
    const double at = y + kHead + kRow * row;
    draw_swatch(out, x + 3.0, at - 4.0, color);
    draw_text(out, x + 40.0, at, "soft", text);
  };
  if (legend.coloring.by_object) {
    head("Colour: each object its own");
    return y + kHead;
  }
  if (mode == 1) {
    head("Colour: speed");
    draw_ramp(out, x, y + 18.0, legend.coloring);
    return y + 18.0 + 46.0;
  }
  if (mode == 2) {
    const auto colors = flow_colors(legend.coloring);
    head("Colour: flow");
    sample(0, colors.past, "up to the current frame");
    sample(1, colors.future, "after it");
    return y + kHead + 2 * kRow;
  }
  if (mode == 3) {
    const auto colors = beat_colors(legend.coloring);
    head("Colour: beats, changing at each key");
    sample(0, colors.odd, "after an odd key");
    sample(1, colors.even, "after an even key, and before the first");
    return y + kHead + 2 * kRow;
  }
  head("Colour: standard");
  sample(0, compute_standard_colors(1).front(), "path over time");
  return y + kHead + kRow;
}

// The height of the above.
double meaning_height(const Legend& legend) {
  const auto& trails = legend.report.trails;
  if (legend.coloring.by_object) return kHead;
  const std::int64_t mode = trails.empty() ? 0 : trails.front().color_mode;
  return mode == 1 ? 64.0 : kHead + kRow * (mode == 2 || mode == 3 ? 2.0 : 1.0);
}

void draw_sign(TextSink& out, Sign sign, double x, double y, const session::TrailReport& report) {
  const std::string at = pixel(x + 16.0) + " " + pixel(y - 4.0);
  const std::string circle = "cx=\"" + pixel(x + 16.0) + "\" cy=\"" + pixel(y - 4.0) + "\"";
  const auto text = [&](const std::string& words) { draw_text(out, x + 40.0, y, "soft", words); };
  switch (sign) {
    case Sign::place:
      out << "<circle class=\"ring lit\" " << circle << " r=\"5.5\" fill=\"none\"/>\n";
      return text("object at frame " + readable(report.current, 8));
    case Sign::key:
      out << "<path class=\"diamond\" d=\"M" << pixel(x + 16.0) << ' ' << pixel(y - 8.5)
          << "l4.5 4.5-4.5 4.5-4.5-4.5z\"/>\n";
      return text("key, with its frame");
    case Sign::arrow:
      out << "<path class=\"arrow\" d=\"M" << at << "m6 0l-10 4.5 2-4.5-2-4.5z\"/>\n";
      return text("direction of the motion");
    case Sign::hold:
      out << "<rect class=\"hold\" x=\"" << pixel(x + 9.0) << "\" y=\"" << pixel(y - 11.0)
          << "\" width=\"14\" height=\"14\" rx=\"3\"/>\n";
      return text("where it holds");
    case Sign::before:
    case Sign::after:
      out << "<g class=\"skin " << (sign == Sign::before ? "before" : "after") << "\"><path d=\"M" << at
          << "m-10 0h20\"/></g>\n";
      return text(sign == Sign::before ? "the figure before that" : "the figure after that");
    case Sign::faint:
      out << "<path class=\"soft-line\" d=\"M" << at << "m-13 0h26\"/>\n";
      return text("other trails, without dots");
    case Sign::second:
      out << "<path class=\"second\" d=\"M" << at << "m-13 0h26\"/>\n<circle class=\"second\" " << circle
          << " r=\"3.5\"/>\n";
      return text(shortened(second_name(report), 28));
  }
}

std::size_t columns(double width, double column) {
  return static_cast<std::size_t>(std::max(1.0, std::floor(width / column)));
}

std::size_t rows_of(std::size_t n, std::size_t across) { return (n + across - 1) / across; }

// Signs and notes; returns the y below.
double draw_remarks(TextSink& out, const Legend& legend, double x, double y, double width) {
  const std::size_t across = columns(width, kSignWidth);
  for (std::size_t i = 0; i < legend.signs.size(); ++i) {
    const std::size_t row = i / across;
    draw_sign(out, legend.signs[i], x + kSignWidth * static_cast<double>(i % across),
              y + kRow * static_cast<double>(row), legend.report);
  }
  y += kRow * static_cast<double>(rows_of(legend.signs.size(), across));
  for (const std::string& note : legend.notes) {
    draw_text(out, x, y, "soft small", note);
    y += kRow;
  }
  return y;
}

double left_height(const Legend& legend, double width) {
  const std::size_t rows = rows_of(legend.signs.size(), columns(width, kSignWidth)) + legend.notes.size();
  return meaning_height(legend) + kRow * static_cast<double>(rows);
}

std::size_t table_rows(const Legend& legend) { return std::min(legend.order.size(), legend.rows); }

double table_height(const Legend& legend) {
  return legend.rows == 0 ? 0.0 : kHead + kRow * static_cast<double>(table_rows(legend));
}

bool table_is_beside(double width) { return width >= kBeside; }
double left_width(double width) { return table_is_beside(width) ? width - kTable : width; }

double numbers_height(const Legend& legend, double width) {
  if (legend.numbered.empty()) return 0.0;
  return kHead + kRow * static_cast<double>(rows_of(legend.numbered.size(), columns(width, kNumberWidth)));
}

// Down the columns, as lists are read.
void draw_numbered(TextSink& out, const Legend& legend, double x, double y, double width) {
  if (legend.numbered.empty()) return;
  draw_text(out, x, y, "ink", "Numbers in the picture");
  const std::size_t rows = rows_of(legend.numbered.size(), columns(width, kNumberWidth));
  for (std::size_t i = 0; i < legend.numbered.size(); ++i) {
    const std::size_t column = i / rows;
    const double at = x + kNumberWidth * static_cast<double>(column);
    const double row = y + kHead + kRow * static_cast<double>(i % rows);
    draw_text(out, at + 18.0, row, "ink number", std::to_string(i + 1), "end");
    draw_text(out, at + 24.0, row, "soft small", shortened(legend.names[legend.numbered[i]], kNumberLetters));
  }
}

// Name, keys, length and speeds of the first few trails; a narrow table has fewer columns.
void draw_measures(TextSink& out, const Legend& legend, double left, double right, double y) {
  const session::TrailReport& report = legend.report;
  const std::string unit = session::unit_text(report);
  const double keys = right - 345.0, length = right - 236.0, mean = right - 116.0, top = right;
  const bool full = right - left >= kTable - 1.0;
  if (legend.rows == 0) return;
  draw_text(out, left, y, "ink", counted(report.trails.size(), "trail"));
  if (full) draw_text(out, keys, y, "soft small", "keys", "end");
  if (full) draw_text(out, length, y, "soft small", "length, " + unit, "end");
  draw_text(out, mean, y, "soft small", "mean speed, " + unit + "/s", "end");
  draw_text(out, top, y, "soft small", "top speed, " + unit + "/s", "end");
  const std::size_t n = table_rows(legend), rows = n < report.trails.size() ? n - 1 : n;
  for (std::size_t i = 0; i < rows; ++i) {
    const session::TrailView& trail = report.trails[legend.order[i]];
    const session::Travel m = session::travel_of(session::path_of(trail, report.fps));
    const double at = y + kHead + kRow * static_cast<double>(i);
    const double indent = legend.coloring.by_object ? 40.0 : 0.0;
    if (indent > 0.0) draw_swatch(out, left + 3.0, at - 4.0, object_color(legend.order[i]));
    draw_text(out, left + indent, at, trail.warnings.empty() ? "soft" : "warn",
              shortened(legend.names[legend.order[i]], full ? 36 : 26));
    if (full) draw_text(out, keys, at, "soft", std::to_string(trail.key_times.size()), "end");
    if (full) draw_text(out, length, at, "soft", readable(m.length), "end");
    draw_text(out, mean, at, "soft", readable(m.mean_speed), "end");
    draw_text(out, top, at, "soft", readable(m.top_speed), "end");
  }
  if (rows < report.trails.size())
    draw_text(out, left, y + kHead + kRow * static_cast<double>(rows), "soft",
              "and " + std::to_string(report.trails.size() - rows) + " more");
}

}  // namespace

std::string second_name(const session::TrailReport& report) {
  if (!report.compared) return "";
  const std::string& scene = report.compared->scene;
  const std::optional<std::string>& take = report.compared->take;
  if (take && scene == report.scene) return "take " + *take;
  const std::string file = std::filesystem::path(scene).filename().string();
  return take ? file + ", take " + *take : file;
}

void draw_title(TextSink& out, const session::TrailReport& report, const std::string& title, double left, double top) {
  const std::string file = std::filesystem::path(report.scene).filename().string();
  draw_text(out, left, top + 22.0, "ink title", title.empty() ? file : title);
  const double seconds = (report.last - report.first) / report.fps;
  draw_text(out, left, top + 44.0, "soft",
            counted(report.trails.size(), "trail") + "  \u00b7  frames " + readable(report.first, 8) + " to " +
                readable(report.last, 8) + "  \u00b7  " + readable(report.fps, 5) + " frames a second  \u00b7  " +
                readable(seconds, 4) + " s");
}

double legend_height(const Legend& legend, double width) {
  const double left = left_height(legend, left_width(width)), table = table_height(legend);
  const double both = table_is_beside(width) ? std::max(left, table) : left + (table > 0.0 ? table + kRow : 0.0);
  const double numbers = numbers_height(legend, width);
  return 34.0 + both + (numbers > 0.0 ? numbers + 10.0 : 0.0);
}

void draw_legend(TextSink& out, const Legend& legend, const Box2& area) {
  out << "<line class=\"frame\" x1=\"" << pixel(area.left) << "\" y1=\"" << pixel(area.top) << "\" x2=\""
      << pixel(area.right) << "\" y2=\"" << pixel(area.top) << "\"/>\n";
  const double top = area.top + 28.0, width = area.width();
  const bool beside = table_is_beside(width);
  const double meaning = draw_meaning(out, legend, area.left, top);
  const double below = draw_remarks(out, legend, area.left, meaning, left_width(width));
  const double table = beside ? top : below + kRow;
  draw_measures(out, legend, beside ? area.right - kTable : area.left, area.right, table);
  const double numbers = legend.rows == 0 ? below : std::max(below, table + table_height(legend));
  draw_numbered(out, legend, area.left, numbers + 10.0, width);
}

}  // namespace vantorelix::cli
