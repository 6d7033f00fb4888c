#include "cli/output/svg/svg_legend.h"
#include "base/number_text.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "cli/output/svg/svg_path.h"
#include "cli/output/text.h"
#include "engine/colour/colour.h"
#include "engine/state/constants.h"

namespace vantorelix::cli {

namespace {

constexpr std::size_t kMaxRows = 8;
constexpr double kRow = 18.0;
constexpr double kHead = 24.0;

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
void draw_ramp(TextSink& out, double x, double y) {
  constexpr double kWidth = 240.0;
  out << "<defs><linearGradient id=\"ramp\">";
  for (const RampStop& stop : _RAMP_STOPS)
    out << "<stop offset=\"" << stop.t << "\" stop-color=\"" << hex_color(stop.colour) << "\"/>";
  out << "</linearGradient></defs>\n<rect x=\"" << pixel(x) << "\" y=\"" << pixel(y - 5.0) << "\" width=\""
      << pixel(kWidth) << "\" height=\"10\" rx=\"5\" fill=\"url(#ramp)\"/>\n";
  const double usual = x + kWidth / _SPACING_RED_MULT;
  draw_text(out, x, y + 20.0, "soft small", "at rest");
  draw_text(out, usual, y + 20.0, "soft small", "trail's mean speed", "middle");
  draw_text(out, x + kWidth, y + 20.0, "soft small", fixed(_SPACING_RED_MULT, 1) + "\u00d7", "end");
}

// Heading and samples of the mode that the trails are shown in; returns the y below.
double draw_meaning(TextSink& out, const session::TrailReport& report, double x, double y) {
  const std::int64_t mode = report.trails.empty() ? 0 : report.trails.front().color_mode;
  const auto head = [&](const char* text) { draw_text(out, x, y, "ink", text); };
  const auto sample = [&](int row, const Vector& color, const std::string& text) {
    const double at = y + kHead + kRow * row;
    draw_swatch(out, x + 3.0, at - 4.0, color);
    draw_text(out, x + 40.0, at, "soft", text);
  };
  if (mode == 1) {
    head("Colour: speed");
    draw_ramp(out, x, y + 18.0);
    return y + 18.0 + 46.0;
  }
  if (mode == 2) {
    // One sample long before the current frame, one long after it.
    const auto colors = compute_temperature_colors(2, -1e9, 1e12);
    head("Colour: flow");
    sample(0, colors.front(), "up to the current frame");
    sample(1, colors.back(), "after it");
    return y + kHead + 2 * kRow;
  }
  if (mode == 3) {
    const auto colors = compute_beats_colors(2, 0.0, 1.0, {1.0});
    head("Colour: beats, changing at each key");
    sample(0, colors.back(), "after an odd key");
    sample(1, colors.front(), "after an even key, and before the first");
    return y + kHead + 2 * kRow;
  }
  head("Colour: standard");
  sample(0, compute_standard_colors(1).front(), "path over time");
  return y + kHead + kRow;
}

double draw_marker_key(TextSink& out, double x, double y) {
  out << "<path class=\"diamond\" d=\"M" << pixel(x + 16.0) << ' ' << pixel(y - 8.5)
      << "l4.5 4.5-4.5 4.5-4.5-4.5z\"/>\n";
  draw_text(out, x + 40.0, y, "soft", "key, with its frame");
  return y + kRow;
}

bool has_keys(const session::TrailReport& report) {
  return std::any_of(report.trails.begin(), report.trails.end(),
                     [](const session::TrailView& trail) { return !trail.key_times.empty(); });
}

// The path where it fits, else the name alone.
std::string row_name(const session::TrailView& trail) {
  const std::string path = width(trail.source) <= 36 ? trail.source : "\u2026|" + trail.name;
  return trail.warnings.empty() ? path : path + " \u26a0";
}

// Name, keys, length, speeds of the first few trails.
void draw_measures(TextSink& out, const session::TrailReport& report, double right, double y) {
  const double keys = right - 340.0, length = right - 225.0, mean = right - 110.0, fastest = right;
  const double name = right - 620.0;
  draw_text(out, name, y, "ink", counted(report.trails.size(), "trail"));
  draw_text(out, keys, y, "soft small", "keys", "end");
  draw_text(out, length, y, "soft small", "length, " + session::unit_text(report), "end");
  draw_text(out, mean, y, "soft small", "mean " + session::unit_text(report) + "/s", "end");
  draw_text(out, fastest, y, "soft small", "fastest " + session::unit_text(report) + "/s", "end");
  const std::size_t rows = report.trails.size() <= kMaxRows ? report.trails.size() : kMaxRows - 1;
  for (std::size_t i = 0; i < rows; ++i) {
    const session::TrailView& trail = report.trails[i];
    const session::TrailMeasure m = session::measure(trail, report.fps);
    const double at = y + kHead + kRow * static_cast<double>(i);
    draw_text(out, name, at, trail.warnings.empty() ? "soft" : "warn", row_name(trail));
    draw_text(out, keys, at, "soft", std::to_string(trail.key_times.size()), "end");
    draw_text(out, length, at, "soft", readable(m.length), "end");
    draw_text(out, mean, at, "soft", readable(m.mean), "end");
    draw_text(out, fastest, at, "soft", readable(m.fastest), "end");
  }
  if (rows < report.trails.size())
    draw_text(out, name, y + kHead + kRow * static_cast<double>(rows), "soft",
              "and " + std::to_string(report.trails.size() - rows) + " more");
}

}  // namespace

void draw_title(TextSink& out, const session::TrailReport& report, double left, double top) {
  const std::string file = std::filesystem::path(report.scene).filename().string();
  draw_text(out, left, top + 22.0, "ink title", file);
  const double seconds = (report.last - report.first) / report.fps;
  draw_text(out, left, top + 44.0, "soft",
            counted(report.trails.size(), "trail") + "  \u00b7  frames " + readable(report.first, 8) + " to " +
                readable(report.last, 8) + "  \u00b7  " + readable(report.fps, 5) + " frames a second  \u00b7  " +
                readable(seconds, 4) + " s");
}

double legend_height(const session::TrailReport& report, const std::vector<std::string>& notes) {
  const double measures = kHead + kRow * static_cast<double>(std::min(report.trails.size(), kMaxRows));
  const double meaning = 90.0 + kRow * static_cast<double>(notes.size());
  return std::max(measures, meaning) + 34.0;
}

void draw_legend(TextSink& out, const session::TrailReport& report, const std::vector<std::string>& notes,
                 const Box2& area) {
  out << "<line class=\"frame\" x1=\"" << pixel(area.left) << "\" y1=\"" << pixel(area.top) << "\" x2=\""
      << pixel(area.right) << "\" y2=\"" << pixel(area.top) << "\"/>\n";
  const double top = area.top + 28.0;
  double y = draw_meaning(out, report, area.left, top);
  if (has_keys(report)) y = draw_marker_key(out, area.left, y);
  for (const std::string& note : notes) {
    draw_text(out, area.left, y, "soft small", note);
    y += kRow;
  }
  draw_measures(out, report, area.right, top);
}

}  // namespace vantorelix::cli
