#include "cli/output/svg/svg.h"
#include "base/number_text.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "cli/output/svg/svg_camera.h"
#include "cli/output/svg/svg_grid.h"
#include "cli/output/svg/svg_labels.h"
#include "cli/output/svg/svg_legend.h"
#include "cli/output/svg/svg_line.h"
#include "cli/output/svg/svg_path.h"
#include "cli/output/svg/svg_style.h"
#include "cli/output/text.h"

namespace vantorelix::cli {

namespace {

constexpr double kWidth = 1200.0;
constexpr double kMargin = 44.0;
constexpr double kTitle = 66.0;
// Points that all lines together keep, and dots that are drawn: a few MB at most.
constexpr std::size_t kMaxPoints = 60'000;
constexpr std::size_t kMaxDots = 5'000;
// Above this many trails shadows would hide more than they tell.
constexpr std::size_t kMaxShadows = 6;

// The picture being made: where everything goes.
struct Sheet {
  Bounds bounds;
  Camera camera;
  Ground ground;
  Placement placement;
  Box2 plot;
  std::vector<DrawnTrail> trails;
  Thinning thinning = {};
  std::size_t stride = 1;
};

void include_motion(Box2& box, const session::TrailReport& report, const Camera& camera) {
  for (const session::TrailView& trail : report.trails)
    for (const Vector& p : *trail.points)
      if (is_finite(p)) box.include(camera.project(y_up(p, report.up_axis)));
}

// Fits the motion, and the ground under it, into the width; the height follows within limits.
void place(Sheet& sheet, const session::TrailReport& report) {
  Box2 seen;
  include_motion(seen, report, sheet.camera);
  if (!(seen.left <= seen.right)) seen.include(sheet.camera.project(sheet.bounds.centre()));
  if (sheet.camera.is_perspective())
    for (const Vector& corner : sheet.ground.corners()) seen.include(sheet.camera.project(corner));
  const bool ruled = !sheet.camera.is_perspective();
  const double left = kMargin + (ruled ? 40.0 : 0.0), width = kWidth - kMargin - left;
  const double inset = ruled ? 30.0 : 14.0;
  const double wide = std::max(seen.width(), 1e-12), high = std::max(seen.height(), 1e-12);
  const double height = std::clamp((width - 2 * inset) * high / wide + 2 * inset, 360.0, 760.0);
  const double top = kTitle + (ruled ? 36.0 : 20.0);
  sheet.plot = {left, left + width, top, top + height};
  const double scale = std::min((width - 2 * inset) / wide, (height - 2 * inset) / high);
  sheet.placement.scale = scale;
  sheet.placement.shift = {left + width / 2 - scale * (seen.left + seen.right) / 2,
                           sheet.plot.top + height / 2 - scale * (seen.top + seen.bottom) / 2};
}

void add_trails(Sheet& sheet, const session::TrailReport& report) {
  for (const session::TrailView& trail : report.trails)
    sheet.trails.emplace_back(trail, mode_colors(trail), [&sheet, up = report.up_axis](const Vector& p) {
      return sheet.placement.apply(sheet.camera.project(y_up(p, up)));
    });
}

// Thins until the lines keep few enough points.
void thin_lines(Sheet& sheet) {
  const auto kept = [&] {
    std::size_t n = 0;
    for (const DrawnTrail& trail : sheet.trails) n += trail.kept(sheet.thinning);
    return n;
  };
  while (kept() > kMaxPoints && sheet.thinning.tolerance < 10.0) sheet.thinning.tolerance *= 1.6;
  // The points of a line that jumps to and fro are never near each other: there only leaving samples out helps.
  while (kept() > kMaxPoints && sheet.thinning.every < 1'000'000'000) sheet.thinning.every *= 2;
}

// The least of 1, 2, 5, 10, 20 ... that is at least `least`.
std::size_t nice_stride(double least) {
  if (!(least > 1.0)) return 1;
  const double step = nice_step(std::min(least, 1e12));
  const bool head_is_two = std::lround(step / std::pow(10.0, std::floor(std::log10(step)))) == 2;
  return static_cast<std::size_t>(std::llround(step >= least ? step : step * (head_is_two ? 2.5 : 2.0)));
}

// Dots tell speed only while they can be told apart.
void thin_dots(Sheet& sheet) {
  double length = 0.0, size = 1.0;
  std::size_t samples = 0;
  for (const DrawnTrail& drawn : sheet.trails) {
    length += drawn.screen_length();
    samples += drawn.trail().points->size();
    size = std::max(size, drawn.trail().point_size);
  }
  const double spacing = std::max(length / std::max<double>(1.0, static_cast<double>(samples)), 1e-6);
  const double crowd = 1.25 * size / spacing;
  const double many = static_cast<double>(samples) / static_cast<double>(kMaxDots);
  sheet.stride = nice_stride(std::max(crowd, many));
}

std::vector<std::string> notes(const Sheet& sheet, const session::TrailReport& report, double ruled_step) {
  std::vector<std::string> result;
  const std::string up(1, report.up_axis);
  if (ruled_step > 0.0)
    result.push_back("grid lines every " + readable(ruled_step, 6) + " " + session::unit_text(report));
  else
    result.push_back("ground squares of " + readable(sheet.ground.step, 6) + " " + session::unit_text(report) +
                     ", at " + up + " = " + readable(sheet.ground.height, 6));
  const bool dots =
      std::any_of(report.trails.begin(), report.trails.end(), [](const session::TrailView& t) { return t.show_dots; });
  if (dots && sheet.stride > 1) result.push_back("a dot every " + std::to_string(sheet.stride) + " samples");
  if (sheet.thinning.tolerance > Thinning{}.tolerance)
    result.push_back("lines thinned to points " + fixed(sheet.thinning.tolerance, 1) +
                     " px apart; the data files hold them all");
  if (sheet.thinning.every > 1)
    result.push_back("lines through one of every " + std::to_string(sheet.thinning.every) + " samples");
  const auto marked = std::count_if(report.trails.begin(), report.trails.end(),
                                    [](const session::TrailView& trail) { return !trail.warnings.empty(); });
  if (marked != 0) result.push_back("\u26a0 may differ from the scene's own motion, see the warnings");
  return result;
}

void draw_depth_cues(TextSink& out, const Sheet& sheet, const session::TrailReport& report,
                     const std::vector<KeyMark>& keys) {
  if (!sheet.camera.is_perspective() || sheet.trails.size() > kMaxShadows) return;
  const auto on_ground = [&](const Vector& p) {
    const Vector up = y_up(p, report.up_axis);
    return sheet.placement.apply(sheet.camera.project({up.x, sheet.ground.height, up.z}));
  };
  for (const DrawnTrail& trail : sheet.trails) trail.draw_outline(out, sheet.thinning, "shadow", on_ground);
  PathData drops;
  for (const KeyMark& key : keys) {
    drops.move(key.at);
    drops.line(on_ground(key.position));
  }
  if (!drops.empty()) out << "<path class=\"drop\" d=\"" << drops.text() << "\"/>\n";
}

void draw_trails(TextSink& out, const Sheet& sheet) {
  for (const DrawnTrail& trail : sheet.trails) {
    out << "<g><title>" << xml_text(trail.trail().source) << "</title>\n";
    if (trail.trail().show_line && trail.trail().line_width > 0.0) {
      trail.draw_casing(out, sheet.thinning);
      trail.draw_line(out, sheet.thinning);
    }
    if (trail.trail().show_dots && trail.trail().point_size > 0.0) trail.draw_dots(out, sheet.stride);
    out << "</g>\n";
  }
}

void begin(TextSink& out, double height, const std::string& theme, const std::string& scene) {
  const std::string size = pixel(kWidth) + " " + pixel(height);
  out << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " << size << "\" width=\"" << pixel(kWidth)
      << "\" height=\"" << pixel(height) << "\">\n<title>Motion trails of " << xml_text(scene) << "</title>\n<style>"
      << style_sheet(theme) << "</style>\n<rect class=\"bg\" width=\"" << pixel(kWidth) << "\" height=\""
      << pixel(height) << "\"/>\n";
}

}  // namespace

void write_svg(TextSink& out, const session::TrailReport& report, const SvgOptions& options) {
  const Bounds bounds = bounds_of(report);
  Sheet sheet{bounds, Camera(options.view, report, bounds), ground_under(bounds), {}, {}, {}};
  place(sheet, report);
  add_trails(sheet, report);
  thin_lines(sheet);
  thin_dots(sheet);
  const double legend = legend_height(report, notes(sheet, report, 1.0));
  const double foot = sheet.plot.bottom + (sheet.camera.is_perspective() ? 20.0 : 40.0);
  begin(out, foot + legend, options.theme, report.scene);
  draw_title(out, report, kMargin, 18.0);

  double ruled_step = 0.0;
  if (sheet.camera.is_perspective())
    draw_ground(out, sheet.ground, sheet.camera, sheet.placement, report.up_axis);
  else
    ruled_step = draw_ruled_paper(out, sheet.plot, sheet.camera, sheet.placement, bounds, report.up_axis);
  Occupancy occupancy({kMargin / 2, kWidth - kMargin / 2, sheet.plot.top - 14.0, sheet.plot.bottom + 14.0});
  for (const DrawnTrail& trail : sheet.trails)
    trail.for_each_stretch(sheet.thinning,
                           [&](const Point2& from, const Point2& to) { occupancy.note_line(from, to); });
  const auto keys = choose_keys(sheet.trails, occupancy);
  draw_depth_cues(out, sheet, report, keys);
  draw_trails(out, sheet);
  draw_keys(out, keys);
  label_trails(out, sheet.trails, occupancy);
  label_keys(out, keys, occupancy, sheet.trails.size() > kMaxShadows ? 30 : 60);
  draw_legend(out, report, notes(sheet, report, ruled_step), {kMargin, kWidth - kMargin, foot, foot + legend});
  out << "</svg>\n";
}

}  // namespace vantorelix::cli
