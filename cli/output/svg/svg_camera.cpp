#include "cli/output/svg/svg_camera.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "base/mathematics/mathematics.h"
#include "session/motion.h"

namespace vantorelix::cli {

namespace {

double dot(const Vector& a, const Vector& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Vector minus(const Vector& a, const Vector& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }

// The angle in the ground plane along which the motion is longest; nothing clear gives `otherwise`. Of many samples
// some tell it, the same as on the page (viewer/src/model/framing.ts).
double main_direction(const Fitted& fitted, const Vector& centre, double otherwise) {
  constexpr std::size_t kMostTelling = 50'000;
  std::size_t total = 0;
  for (const Vectors& line : fitted.lines) total += line->size();
  const std::size_t stride = std::max<std::size_t>(1, total / kMostTelling);
  double xx = 0.0, zz = 0.0, xz = 0.0;
  for (const Vectors& line : fitted.lines)
    for (std::size_t i = 0; i < line->size(); i += stride) {
      const Vector p = minus(y_up((*line)[i], fitted.up_axis), centre);
      if (!std::isfinite(p.x) || !std::isfinite(p.z)) continue;
      xx += p.x * p.x;
      zz += p.z * p.z;
      xz += p.x * p.z;
    }
  const double spread = base::hypot((xx - zz) / 2.0, xz);
  if (!(spread > 0.15 * (xx + zz))) return otherwise;
  return 0.5 * base::atan2(2.0 * xz, xx - zz);
}

// Sum over the lines of the way on the ground from the first sample to the last.
Vector net_motion(const Fitted& fitted) {
  Vector sum;
  for (const Vectors& line : fitted.lines) {
    if (line->empty()) continue;
    const Vector way = minus(y_up(line->back(), fitted.up_axis), y_up(line->front(), fitted.up_axis));
    if (std::isfinite(way.x) && std::isfinite(way.z)) sum = {sum.x + way.x, 0.0, sum.z + way.z};
  }
  return sum;
}

}  // namespace

void Box2::include(const Point2& p) {
  left = std::min(left, p.x);
  right = std::max(right, p.x);
  top = std::min(top, p.y);
  bottom = std::max(bottom, p.y);
}

bool Box2::overlaps(const Box2& other) const {
  return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
}

double Bounds::extent() const { return std::max({high.x - low.x, high.y - low.y, high.z - low.z}); }
double Bounds::horizontal() const { return std::max(high.x - low.x, high.z - low.z); }
Vector Bounds::centre() const {
  return {low.x + (high.x - low.x) / 2.0, low.y + (high.y - low.y) / 2.0, low.z + (high.z - low.z) / 2.0};
}

Vector y_up(const Vector& v, char up_axis) { return up_axis == 'z' ? Vector{v.x, v.z, -v.y} : v; }

Bounds bounds_of(const Fitted& fitted) {
  constexpr double kFar = std::numeric_limits<double>::infinity();
  Bounds b{{kFar, kFar, kFar}, {-kFar, -kFar, -kFar}};
  fitted.for_each_point([&](const Vector& p) {
    b.low = {std::min(b.low.x, p.x), std::min(b.low.y, p.y), std::min(b.low.z, p.z)};
    b.high = {std::max(b.high.x, p.x), std::max(b.high.y, p.y), std::max(b.high.z, p.z)};
  });
  if (!(b.low.x <= b.high.x)) b = {{0, 0, 0}, {0, 0, 0}};
  if (!session::has_extent(b.low, b.high)) {
    const Vector c = b.centre();
    b = {{c.x - 0.5, c.y - 0.5, c.z - 0.5}, {c.x + 0.5, c.y + 0.5, c.z + 0.5}};
  }
  return b;
}

Camera::Camera(const std::string& view, const Fitted& fitted, const Bounds& bounds) : centre_(bounds.centre()) {
  using base::kDegree;
  if (view != "persp") {
    look(view == "side" ? 90.0 * kDegree : 0.0, view == "top" ? 90.0 * kDegree : 0.0);
    return;
  }
  const bool flat = bounds.high.y - bounds.low.y < 0.15 * bounds.horizontal();
  const double elevation = (flat ? 38.0 : 18.0) * kDegree;
  // The picture's right is (cos a, -sin a) in x and z: 22 degrees off the main direction, which shows its depth too.
  const double azimuth = 22.0 * kDegree - main_direction(fitted, centre_, -8.0 * kDegree);
  look(azimuth, elevation);
  if (dot(net_motion(fitted), right_) < -0.05 * bounds.extent()) look(azimuth + std::numbers::pi, elevation);
  const Vector d = minus(bounds.high, bounds.low);
  distance_ = 3.4 * 0.5 * std::sqrt(dot(d, d));
}

void Camera::look(double azimuth, double elevation) {
  const auto [sa, ca] = base::sin_cos(azimuth);
  const auto [se, ce] = base::sin_cos(elevation);
  right_ = {ca, 0.0, -sa};
  forward_ = {-sa * ce, -se, -ca * ce};
  up_ = {-sa * se, ce, -ca * se};
}

Point2 Camera::project(const Vector& p) const {
  const Vector d = minus(p, centre_);
  const double depth = is_perspective() ? std::max(distance_ + dot(d, forward_), 0.05 * distance_) / distance_ : 1.0;
  return {dot(d, right_) / depth, -dot(d, up_) / depth};
}

double nice_step(double size) {
  const double power = std::pow(10.0, std::floor(std::log10(size)));
  const double head = size / power;
  return power * (head >= 5.0 ? 5.0 : head >= 2.0 ? 2.0 : 1.0);
}

}  // namespace vantorelix::cli
