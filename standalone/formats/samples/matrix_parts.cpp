#include "standalone/formats/samples/matrix_parts.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

#include "base/mathematics/mathematics.h"
#include "standalone/scene/transforms/quaternion.h"

namespace vantorelix::standalone {

namespace {

using Row = std::array<double, 3>;

constexpr double kFlat = 1e-14;  // of a row's length: what is left of it beside the others is rounding

double along(const Row& a, const Row& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
double length(const Row& a) { return base::hypot(a[0], a[1], a[2]); }
Row minus(const Row& a, double factor, const Row& b) {
  return {a[0] - factor * b[0], a[1] - factor * b[1], a[2] - factor * b[2]};
}
Row over(const Row& a, double divisor) { return {a[0] / divisor, a[1] / divisor, a[2] / divisor}; }
Row cross(const Row& a, const Row& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// Of unit length, at a right angle to a row of unit length.
Row beside(const Row& a) {
  std::size_t least = 0;
  for (std::size_t axis = 1; axis < 3; ++axis)
    if (std::abs(a[axis]) < std::abs(a[least])) least = axis;
  Row axis{};
  axis[least] = 1.0;
  const Row turned = minus(axis, along(axis, a), a);
  return over(turned, length(turned));
}

double ratio(double a, double b) { return b == 0.0 ? 0.0 : a / b; }

// The rows are S * SH * R: a triangle times a rotation.
void set_turn(MatrixParts& parts, const Affine& m) {
  const double x = length(m.m[0]);
  const Row first = x > 0.0 ? over(m.m[0], x) : Row{1.0, 0.0, 0.0};
  const double second_along_first = along(m.m[1], first);
  const Row rest = minus(m.m[1], second_along_first, first);
  const double left = length(rest);
  const double y = left > kFlat * length(m.m[1]) ? left : 0.0;
  const Row second = y > 0.0 ? over(rest, y) : beside(first);
  const Row third = cross(first, second);
  const double z = along(m.m[2], third);
  const Angles angles = angles_of({first, second, third}, 0.0);
  std::copy(angles.begin(), angles.end(), parts.begin() + kRotateParts);
  const std::array<double, 6> scale_and_shear = {
      x, y, z, ratio(second_along_first, y), ratio(along(m.m[2], first), z), ratio(along(m.m[2], second), z)};
  std::copy(scale_and_shear.begin(), scale_and_shear.end(), parts.begin() + kScaleParts);
}

// The angle plus whole turns, at most half a turn from `before`.
double turned_near(double angle, double before) {
  constexpr double kTurn = 2.0 * std::numbers::pi;
  return angle + kTurn * std::round((before - angle) / kTurn);
}

}  // namespace

MatrixParts parts_of(const Affine& matrix) {
  MatrixParts parts{};
  set_turn(parts, matrix);
  if (!std::all_of(parts.begin(), parts.end(), [](double part) { return std::isfinite(part); })) {
    parts = {};
    std::fill_n(parts.begin() + kScaleParts, 3, 1.0);
  }
  std::copy(matrix.m[3].begin(), matrix.m[3].end(), parts.begin());
  return parts;
}

void bring_near(MatrixParts& parts, const MatrixParts& before) {
  double best = INFINITY;
  const double x = parts[kRotateParts], y = parts[kRotateParts + 1], z = parts[kRotateParts + 2];
  const double pi = std::numbers::pi;
  for (const Angles& same : {Angles{x, y, z}, Angles{x + pi, pi - y, z + pi}}) {
    Angles near;
    double distance = 0.0;
    for (std::size_t i = 0; i < 3; ++i) {
      near[i] = turned_near(same[i], before[kRotateParts + i]);
      distance += std::abs(near[i] - before[kRotateParts + i]);
    }
    if (!(distance < best)) continue;
    best = distance;
    std::copy(near.begin(), near.end(), parts.begin() + kRotateParts);
  }
}

}  // namespace vantorelix::standalone
