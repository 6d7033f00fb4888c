#include "standalone/formats/bvh/rigid_frame.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace vantorelix::standalone {

namespace {

using Axis = std::array<double, 3>;

double dot(const Axis& a, const Axis& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

Axis cross(const Axis& a, const Axis& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// False for an axis without a direction.
bool set_length_one(Axis& axis) {
  const double largest = std::max({std::abs(axis[0]), std::abs(axis[1]), std::abs(axis[2])});
  if (!(largest > 0.0)) return false;
  for (double& number : axis) number /= largest;
  const double length = std::sqrt(dot(axis, axis));
  for (double& number : axis) number /= length;
  return true;
}

}  // namespace

RigidFrame rigid_frame_of(const Affine& matrix) {
  RigidFrame frame;
  frame.place = matrix.translation();
  Axis x = matrix.m[0], y = matrix.m[1];
  bool turned = set_length_one(x) && set_length_one(y);
  if (turned) {
    const double along = dot(x, y);
    for (std::size_t k = 0; k < 3; ++k) y[k] -= along * x[k];
    turned = std::abs(along) < 1.0 - 1e-9 && set_length_one(y);
  }
  if (turned) frame.rotation = {x, y, cross(x, y)};
  constexpr double kNear = 1e-9;
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j < 3; ++j)
      frame.is_whole = frame.is_whole && std::abs(matrix.m[i][j] - frame.rotation[i][j]) <= kNear;
  return frame;
}

RigidFrame relative_to(const RigidFrame& parent, const RigidFrame& child) {
  RigidFrame result;
  const Axis away = {child.place.x - parent.place.x, child.place.y - parent.place.y, child.place.z - parent.place.z};
  const Basis& to = parent.rotation;
  result.place = {dot(away, to[0]), dot(away, to[1]), dot(away, to[2])};
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j < 3; ++j) result.rotation[i][j] = dot(child.rotation[i], to[j]);
  return result;
}

}  // namespace vantorelix::standalone
