#include "cli/output/svg/svg.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "cli/output/svg/svg_path.h"
#include "cli/output/svg/svg_sheet.h"
#include "cli/output/svg/svg_style.h"
#include "cli/output/text.h"
#include "cli/terminal/failure.h"

namespace vantorelix::cli {

namespace {

// The least height of a plot in a picture of a given size.
constexpr double kLeastPlot = 120.0;

// The sheet of a picture of a given size: its legend shrinks until the plot has half of the height, then as far as it
// can.
Sheet fitted_sheet(const Subject& subject, const PictureSize& size) {
  constexpr std::array<Room, 4> kRooms = {{{8, 90}, {5, 30}, {0, 12}, {0, 0}}};
  for (Room room : kRooms) {
    // The plot grows smaller by what its own legend needs; that may make the legend larger again, a few times at most.
    for (int turn = 0; turn < 8; ++turn) {
      Sheet sheet(subject, room);
      const double needed = legend_height(sheet.legend, sheet.width - 2 * kMargin);
      const bool last = room.numbers == 0;
      if (needed <= room.legend &&
          (sheet.plot.height() >= 0.5 * size.height || (last && sheet.plot.height() >= kLeastPlot)))
        return sheet;
      if (needed <= room.legend) break;
      room.legend = needed;
    }
  }
  Sheet sheet(subject, {0, 0, 0.0});
  const double least = sheet.plot.top + kLeastPlot + sheet.height - sheet.plot.bottom +
                       legend_height(sheet.legend, sheet.width - 2 * kMargin);
  throw Failure("--size " + std::to_string(size.width) + "x" + std::to_string(size.height) +
                ": leaves no room for the motion above the legend; give it a height of " +
                std::to_string(static_cast<int>(std::ceil(least))) + " or more");
}

Sheet sheet_of(const Subject& subject) {
  return subject.options.size ? fitted_sheet(subject, *subject.options.size) : Sheet(subject, {});
}

void begin(TextSink& out, const Sheet& sheet) {
  const session::TrailReport& report = sheet.subject.report;
  const SvgOptions& options = sheet.subject.options;
  const std::string name = options.title.empty() ? "Motion trails of " + report.scene : options.title;
  out << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " << pixel(sheet.width) << " " << pixel(sheet.height)
      << "\" width=\"" << pixel(sheet.width) << "\" height=\"" << pixel(sheet.height) << "\">\n<title>"
      << xml_text(name) << "</title>\n<style>" << style_sheet(options.theme) << "</style>\n<rect class=\"bg\" width=\""
      << pixel(sheet.width) << "\" height=\"" << pixel(sheet.height) << "\"/>\n<clipPath id=\"plot\"><rect x=\"0\" y=\""
      << pixel(sheet.plot.top - 14.0) << "\" width=\"" << pixel(sheet.width) << "\" height=\""
      << pixel(sheet.plot.height() + 28.0) << "\"/></clipPath>\n";
}

void draw_depth_cues(TextSink& out, const Sheet& sheet) {
  const Subject& subject = sheet.subject;
  if (!subject.camera.is_perspective() || sheet.trails.size() > kMaxShadows) return;
  const auto on_ground = [&](const Vector& p) {
    const Vector up = y_up(p, subject.report.up_axis);
    return sheet.lens.placement.apply(subject.camera.project({up.x, subject.ground.height, up.z}));
  };
  for (const DrawnTrail& trail : sheet.trails) trail.draw_outline(out, sheet.thinning, "shadow", on_ground);
  PathData drops;
  for (const KeyMark& key : sheet.keys) {
    drops.move(key.at);
    drops.line(on_ground(key.position));
  }
  if (!drops.empty()) out << "<path class=\"drop\" d=\"" << drops.text() << "\"/>\n";
}

void draw_trail(TextSink& out, const DrawnTrail& trail, const Sheet& sheet) {
  const session::TrailView& view = trail.trail();
  out << (trail.lit() ? "<g>" : "<g class=\"faint\">") << "<title>" << xml_text(view.source) << "</title>\n";
  if (view.show_line && view.line_width > 0.0) {
    if (trail.lit()) trail.draw_casing(out, sheet.thinning);
    trail.draw_line(out, sheet.thinning);
  }
  if (trail.lit() && view.show_dots && view.point_size > 0.0) trail.draw_dots(out, sheet.dots);
  out << "</g>\n";
}

// The second scene, muted: where the objects go there, where they are now, and how far that is from here.
void draw_second(TextSink& out, const Sheet& sheet) {
  if (sheet.second.empty()) return;
  out << "<g>\n<title>" << xml_text(second_name(sheet.subject.report)) << "</title>\n";
  for (const DrawnTrail& trail : sheet.second)
    trail.draw_outline(out, sheet.thinning, "second", [&](const Vector& p) { return trail.place(p); });
  const double now = sheet.subject.report.current;
  const Figure first = sheet.figure(), second = sheet.second_figure();
  PathData bones, ways;
  std::string rings;
  second.for_each_bone(now, [&](const Point2& from, const Point2& to) {
    bones.move(from);
    bones.line(to);
  });
  for (const std::size_t trail : sheet.beside) {
    const auto here = first.spot(trail, now), there = second.spot(trail, now);
    if (!there) continue;
    rings += "<circle class=\"second\" cx=\"" + pixel(there->x) + "\" cy=\"" + pixel(there->y) + "\" r=\"3.5\"/>\n";
    if (!here) continue;
    ways.move(*here);
    ways.line(*there);
  }
  if (!bones.empty()) out << "<path class=\"second bones\" d=\"" << bones.text() << "\"/>\n";
  if (!ways.empty()) out << "<path class=\"second there\" d=\"" << ways.text() << "\"/>\n";
  out << rings << "</g>\n";
}

void draw_apart(TextSink& out, const Line& apart) {
  PathData path;
  path.move(apart.from);
  path.line(apart.to);
  out << "<path class=\"apart\" d=\"" << path.text() << "\"/>\n";
}

// Faint trails below the figure, lit ones above it.
void draw_motion(TextSink& out, const Sheet& sheet) {
  const Figure figure = sheet.figure();
  out << "<g clip-path=\"url(#plot)\">\n";
  if (sheet.subject.camera.is_perspective())
    draw_ground(out, sheet.subject.ground, sheet.subject.camera, sheet.lens.placement, sheet.subject.report.up_axis);
  draw_depth_cues(out, sheet);
  draw_second(out, sheet);
  for (const DrawnTrail& trail : sheet.trails)
    if (!trail.lit()) draw_trail(out, trail, sheet);
  figure.draw_skins(out, sheet.skins.skins);
  figure.draw_bones(out);
  for (const DrawnTrail& trail : sheet.trails)
    if (trail.lit()) draw_trail(out, trail, sheet);
  if (sheet.apart) draw_apart(out, *sheet.apart);
  draw_holds(out, sheet.holds.marks);
  figure.draw_rings(out, sheet.trails, sheet.plot);
  draw_arrows(out, sheet.arrows);
  draw_keys(out, sheet.keys);
  draw_labels(out, sheet.labels);
  draw_labels(out, sheet.names.labels);
  out << "</g>\n";
}

}  // namespace

PictureSize write_svg(TextSink& out, const session::TrailReport& report, const SvgOptions& options) {
  const Subject subject = subject_of(report, options);
  const Sheet sheet = sheet_of(subject);
  begin(out, sheet);
  draw_title(out, report, options.title, kMargin, 18.0);
  if (!subject.camera.is_perspective())
    draw_ruled_paper(out, sheet.plot, subject.camera, sheet.lens.placement, subject.bounds, report.up_axis);
  draw_motion(out, sheet);
  draw_legend(out, sheet.legend, {kMargin, sheet.width - kMargin, sheet.foot(), sheet.height});
  out << "</svg>\n";
  return {static_cast<int>(std::ceil(sheet.width)), static_cast<int>(std::ceil(sheet.height))};
}

}  // namespace vantorelix::cli
