#include "cli/output/svg/svg_grid.h"
#include "base/number_text.h"

#include <algorithm>
#include <cmath>

#include "base/mathematics/mathematics.h"
#include "cli/output/svg/svg_path.h"
#include "cli/output/text.h"

namespace vantorelix::cli {

namespace {

void draw_line(TextSink& out, const char* kind, const Point2& a, const Point2& b) {
  out << "<line class=\"" << kind << "\" x1=\"" << pixel(a.x) << "\" y1=\"" << pixel(a.y) << "\" x2=\"" << pixel(b.x)
      << "\" y2=\"" << pixel(b.y) << "\"/>\n";
}

// The axis of the scene that a direction of the picture runs along, and whether it grows that way.
struct PictureAxis {
  char name;
  double sign;
  double Vector::*component;
};

PictureAxis axis_along(const Vector& direction, char up_axis) {
  const bool z_up = up_axis == 'z';
  if (std::abs(direction.x) > 0.5) return {'x', direction.x, &Vector::x};
  if (std::abs(direction.y) > 0.5) return {z_up ? 'z' : 'y', direction.y, &Vector::y};
  // Turned y-up coordinates hold -y of a z-up scene in z.
  return {z_up ? 'y' : 'z', direction.z, &Vector::z};
}

// The number that stands at a line of ruled paper.
std::string tick_text(double value, const PictureAxis& axis, char up_axis) {
  const bool mirrored = up_axis == 'z' && axis.name == 'y';
  return readable(mirrored ? -value : value, 6);
}

// Letters where the axes leave the ground, on the side where they grow.
template <class Place>
void name_axes(TextSink& out, const Ground& g, const Place& place, char up_axis) {
  const auto name = [&](const Point2& end, const Point2& inner, char letter) {
    const double length = std::max(base::hypot(end.x - inner.x, end.y - inner.y), 1e-9);
    out << "<text class=\"soft\" x=\"" << pixel(end.x + (end.x - inner.x) / length * 12.0) << "\" y=\""
        << pixel(end.y + (end.y - inner.y) / length * 12.0 + 4.0) << "\" text-anchor=\"middle\">" << letter
        << "</text>\n";
  };
  if (g.low_z <= 0.0 && g.high_z >= 0.0) name(place(g.high_x, 0.0), place(g.low_x, 0.0), 'x');
  if (g.low_x > 0.0 || g.high_x < 0.0) return;
  if (up_axis == 'z')
    name(place(0.0, g.low_z), place(0.0, g.high_z), 'y');
  else
    name(place(0.0, g.high_z), place(0.0, g.low_z), 'z');
}

}  // namespace

std::array<Vector, 4> Ground::corners() const {
  return {Vector{low_x, height, low_z}, Vector{high_x, height, low_z}, Vector{high_x, height, high_z},
          Vector{low_x, height, high_z}};
}

Ground ground_under(const Bounds& bounds) {
  Ground ground;
  const Vector c = bounds.centre();
  const double least = 0.25 * bounds.extent();  // a motion straight up still gets a floor to stand on
  const double half_x = std::max(bounds.high.x - bounds.low.x, least) / 2.0;
  const double half_z = std::max(bounds.high.z - bounds.low.z, least) / 2.0;
  const double s = ground.step = nice_step(std::max(half_x, half_z) / 4.0);
  ground.low_x = std::floor((c.x - half_x) / s - 0.3) * s;
  ground.high_x = std::ceil((c.x + half_x) / s + 0.3) * s;
  ground.low_z = std::floor((c.z - half_z) / s - 0.3) * s;
  ground.high_z = std::ceil((c.z + half_z) / s + 0.3) * s;
  const double e = bounds.extent();
  const bool near_zero = bounds.low.y > -0.1 * e && bounds.low.y < 0.6 * e;
  ground.height = near_zero ? 0.0 : std::floor(bounds.low.y / s) * s;
  return ground;
}

void draw_ground(TextSink& out, const Ground& g, const Camera& camera, const Placement& placement, char up_axis) {
  const auto place = [&](double x, double z) { return placement.apply(camera.project({x, g.height, z})); };
  const auto kind = [&](double v) { return std::abs(v) < 1e-6 * g.step ? "axis" : "grid"; };
  const auto lines = [&](double low, double high, const auto& draw) {
    const auto n = std::min<long>(std::lround((high - low) / g.step), 200);
    for (long i = 0; i <= n; ++i) draw(low + static_cast<double>(i) * g.step);
  };
  out << "<g>\n";
  lines(g.low_x, g.high_x, [&](double x) { draw_line(out, kind(x), place(x, g.low_z), place(x, g.high_z)); });
  lines(g.low_z, g.high_z, [&](double z) { draw_line(out, kind(z), place(g.low_x, z), place(g.high_x, z)); });
  name_axes(out, g, place, up_axis);
  out << "</g>\n";
}

double draw_ruled_paper(TextSink& out, const Box2& area, const Camera& camera, const Placement& placement,
                        const Bounds& bounds, char up_axis) {
  const double step = nice_step(100.0 / placement.scale);
  const Vector centre = bounds.centre();
  const Point2 middle = placement.apply(camera.project(centre));
  out << "<g>\n";
  const auto rule = [&](const Vector& direction, bool across) {
    const PictureAxis axis = axis_along(direction, up_axis);
    const double pixels = placement.scale * axis.sign * (across ? 1.0 : -1.0);
    const double origin = (across ? middle.x : middle.y) - centre.*axis.component * pixels;
    const double a = ((across ? area.left : area.top) - origin) / pixels;
    const double b = ((across ? area.right : area.bottom) - origin) / pixels;
    const auto first = std::llround(std::ceil(std::min(a, b) / step));
    const auto last = std::llround(std::floor(std::max(a, b) / step));
    for (long long k = first; k <= last && k - first < 200; ++k) {
      const double at = origin + static_cast<double>(k) * step * pixels;
      const char* kind = k == 0 ? "axis" : "grid";
      if (across)
        draw_line(out, kind, {at, area.top}, {at, area.bottom});
      else
        draw_line(out, kind, {area.left, at}, {area.right, at});
      const std::string text = tick_text(static_cast<double>(k) * step, axis, up_axis);
      out << "<text class=\"soft small\" x=\"" << pixel(across ? at : area.left - 8.0) << "\" y=\""
          << pixel(across ? area.bottom + 16.0 : at + 4.0) << "\" text-anchor=\"" << (across ? "middle" : "end")
          << "\">" << text << "</text>\n";
    }
    out << "<text class=\"soft\" x=\"" << pixel(across ? area.right + 12.0 : area.left - 8.0) << "\" y=\""
        << pixel(across ? area.bottom + 16.0 : area.top - 10.0) << "\" text-anchor=\"" << (across ? "start" : "end")
        << "\">" << axis.name << "</text>\n";
  };
  rule(camera.right(), true);
  rule(camera.up(), false);
  out << "</g>\n";
  return step;
}

}  // namespace vantorelix::cli
