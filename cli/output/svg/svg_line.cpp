#include "cli/output/svg/svg_line.h"

#include <cmath>

#include "base/mathematics/mathematics.h"
#include "cli/output/svg/svg_path.h"
#include "engine/colour/colour.h"

namespace vantorelix::cli {

namespace {

enum Mode { kStandard = 0, kSpacing = 1, kFlow = 2, kBeats = 3 };

// Steps of a colour channel. Speeds change from sample to sample: coarser than the eye can tell apart in a thin line,
// so that neighbours share a path.
int color_levels(const session::TrailView& trail) { return trail.color_mode == kSpacing ? 51 : 255; }

}  // namespace

Vectors mode_colors(const session::TrailView& trail) {
  const host::Value n(static_cast<std::int64_t>(trail.points->size()));
  const auto shared = [](std::vector<Vector> colors) {
    return std::make_shared<const std::vector<Vector>>(std::move(colors));
  };
  switch (trail.color_mode) {
    case kSpacing:
      return trail.colors;
    case kFlow:
      return shared(compute_temperature_colors(n, trail.start_frame, trail.frame_step));
    case kBeats:
      return shared(compute_beats_colors(n, trail.start_frame, trail.frame_step, trail.key_times));
    default:
      return shared(compute_standard_colors(n));
  }
}

DrawnTrail::DrawnTrail(const session::TrailView& trail, Vectors colors, Project project)
    : trail_(trail), colors_(std::move(colors)), project_(std::move(project)) {}

template <class Visit>
void DrawnTrail::for_each_kept(const Thinning& thinning, const Project& project, const Visit& visit) const {
  const auto& points = *trail_.points;
  bool going = false;
  std::size_t last = 0;
  Point2 last_place;
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (!is_finite(points[i])) {
      going = false;
      continue;
    }
    if (going && i % thinning.every != 0 && i + 1 != points.size()) continue;
    const Point2 p = project(points[i]);
    const bool at_end = i + 1 == points.size() || !is_finite(points[i + 1]);
    const bool near =
        going && std::abs(p.x - last_place.x) < thinning.tolerance && std::abs(p.y - last_place.y) < thinning.tolerance;
    if (near && !at_end) continue;
    visit(last, i, p, going);
    going = true;
    last = i;
    last_place = p;
  }
}

void DrawnTrail::for_each_stretch(const Thinning& thinning,
                                  const std::function<void(const Point2&, const Point2&)>& visit) const {
  Point2 last;
  for_each_kept(thinning, project_, [&](std::size_t, std::size_t, const Point2& p, bool on) {
    if (on) visit(last, p);
    last = p;
  });
}

double DrawnTrail::screen_length() const {
  double length = 0.0;
  for_each_stretch({0.0, 1}, [&](const Point2& a, const Point2& b) { length += base::hypot(b.x - a.x, b.y - a.y); });
  return length;
}

std::size_t DrawnTrail::kept(const Thinning& thinning) const {
  std::size_t n = 0;
  for_each_kept(thinning, project_, [&](std::size_t, std::size_t, const Point2&, bool) { ++n; });
  return n;
}

void DrawnTrail::draw_outline(TextSink& out, const Thinning& thinning, const char* kind, const Project& project) const {
  PathData path;
  for_each_kept(thinning, project,
                [&](std::size_t, std::size_t, const Point2& p, bool on) { on ? path.line(p) : path.move(p); });
  if (!path.empty()) out << "<path class=\"" << kind << "\" d=\"" << path.text() << "\"/>\n";
}

void DrawnTrail::draw_casing(TextSink& out, const Thinning& thinning) const {
  out << "<g stroke-width=\"" << pixel(trail_.line_width + 1.6) << "\">";
  draw_outline(out, thinning, "case", project_);
  out << "</g>\n";
}

// A band of the beats starts with its key; the future starts behind the current frame; speeds blend.
Vector DrawnTrail::segment_color(std::size_t from, std::size_t to) const {
  const auto& colors = *colors_;
  if (to >= colors.size()) return {};
  if (trail_.color_mode == kFlow) return colors[to];
  if (trail_.color_mode != kSpacing) return colors[from];
  const Vector &a = colors[from], &b = colors[to];
  return {(a.x + b.x) / 2.0, (a.y + b.y) / 2.0, (a.z + b.z) / 2.0};
}

void DrawnTrail::draw_line(TextSink& out, const Thinning& thinning) const {
  PathData path;
  std::string color;
  Point2 last;
  const auto finish = [&] {
    if (!path.empty() && !color.empty()) out << "<path stroke=\"" << color << "\" d=\"" << path.text() << "\"/>\n";
    path.clear();
  };
  out << "<g stroke-width=\"" << pixel(trail_.line_width) << "\">\n";
  for_each_kept(thinning, project_, [&](std::size_t from, std::size_t to, const Point2& p, bool on) {
    if (!on) {
      finish();
      color.clear();
    } else {
      const std::string next = hex_color(segment_color(from, to), color_levels(trail_));
      if (next != color) {
        finish();
        path.move(last);
        color = next;
      }
      path.line(p);
    }
    last = p;
  });
  finish();
  out << "</g>\n";
}

void DrawnTrail::draw_dots(TextSink& out, std::size_t stride) const {
  PathData halo, path;
  std::string color, dots;
  const auto finish = [&] {
    if (!path.empty()) dots += "<path stroke=\"" + color + "\" d=\"" + path.text() + "\"/>\n";
    path.clear();
  };
  const auto& points = *trail_.points;
  for (std::size_t i = 0; i < points.size(); i += stride) {
    if (!is_finite(points[i]) || i >= colors_->size()) continue;
    const Point2 p = project_(points[i]);
    const std::string next = hex_color((*colors_)[i], color_levels(trail_));
    if (next != color) finish();
    color = next;
    halo.dot(p);
    path.dot(p);
  }
  finish();
  const double width = 0.9 * trail_.point_size;
  out << "<path class=\"case\" stroke-width=\"" << pixel(width + 1.6) << "\" d=\"" << halo.text() << "\"/>\n"
      << "<g stroke-width=\"" << pixel(width) << "\">\n"
      << dots << "</g>\n";
}

}  // namespace vantorelix::cli
