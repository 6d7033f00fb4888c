#include "cli/output/svg/svg_line.h"

#include <algorithm>
#include <cmath>

#include "cli/output/svg/svg_path.h"

namespace vantorelix::cli {

DrawnTrail::DrawnTrail(const session::TrailView& trail, Look look, Project project)
    : trail_(trail), look_(std::move(look)), project_(std::move(project)) {}

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
  const auto& colors = *look_.colors;
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
      const std::string next = hex_color(segment_color(from, to), look_.levels);
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

void DrawnTrail::for_each_dot(const DotFrames& frames, const std::function<void(std::size_t)>& visit) const {
  const auto& points = *trail_.points;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const double frame = trail_.start_frame + static_cast<double>(i) * trail_.frame_step;
    const double steps = std::round(frame) / static_cast<double>(frames.every);
    const bool whole = std::abs(frame - std::round(frame)) < 1e-4 && steps == std::round(steps);
    if (whole && is_finite(points[i]) && i < look_.colors->size()) visit(i);
  }
}

void DrawnTrail::draw_dots(TextSink& out, const DotFrames& frames) const {
  PathData halo, path;
  std::string color, dots;
  const auto finish = [&] {
    if (!path.empty()) dots += "<path stroke=\"" + color + "\" d=\"" + path.text() + "\"/>\n";
    path.clear();
  };
  for_each_dot(frames, [&](std::size_t i) {
    const Point2 p = project_((*trail_.points)[i]);
    const std::string next = hex_color((*look_.colors)[i], look_.levels);
    if (next != color) finish();
    color = next;
    halo.dot(p);
    path.dot(p);
  });
  finish();
  if (halo.empty()) return;
  const double width = 0.9 * trail_.point_size;
  out << "<path class=\"case\" stroke-width=\"" << pixel(width + 1.6) << "\" d=\"" << halo.text() << "\"/>\n"
      << "<g stroke-width=\"" << pixel(width) << "\">\n"
      << dots << "</g>\n";
}

Vector DrawnTrail::color_at(double frame) const {
  if (look_.colors->empty()) return {};
  const double place = std::round((frame - trail_.start_frame) / trail_.frame_step);
  return (
      *look_.colors)[static_cast<std::size_t>(std::clamp(place, 0.0, static_cast<double>(look_.colors->size() - 1)))];
}

}  // namespace vantorelix::cli
