#include "standalone/scene/rotation_blend.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "standalone/scene/rotation.h"

namespace vantorelix::standalone {
namespace {

using Quaternion = std::array<double, 4>;  // x, y, z, w

// The axes in the order of their turns.
constexpr std::array<std::array<std::size_t, 3>, 6> kOrders = {
    {{0, 1, 2}, {1, 2, 0}, {2, 0, 1}, {0, 2, 1}, {1, 0, 2}, {2, 1, 0}}};

// First a, then b.
Quaternion then(const Quaternion& a, const Quaternion& b) {
  return {b[3] * a[0] + b[0] * a[3] + b[1] * a[2] - b[2] * a[1], b[3] * a[1] - b[0] * a[2] + b[1] * a[3] + b[2] * a[0],
          b[3] * a[2] + b[0] * a[1] - b[1] * a[0] + b[2] * a[3], b[3] * a[3] - b[0] * a[0] - b[1] * a[1] - b[2] * a[2]};
}

Quaternion quaternion(const Angles& angles, const std::array<std::size_t, 3>& axes) {
  const SinCos t = sin_cos(angles[0] / 2, angles[1] / 2, angles[2] / 2);
  Quaternion q = {0, 0, 0, 1};
  for (const std::size_t axis : axes) {
    Quaternion turn = {0, 0, 0, t.cos[axis]};
    turn[axis] = t.sin[axis];
    q = then(q, turn);
  }
  return q;
}

Basis basis(const Quaternion& q) {
  const double x = q[0], y = q[1], z = q[2], w = q[3];
  return {{{1 - 2 * (y * y + z * z), 2 * (x * y + z * w), 2 * (x * z - y * w)},
           {2 * (x * y - z * w), 1 - 2 * (x * x + z * z), 2 * (y * z + x * w)},
           {2 * (x * z + y * w), 2 * (y * z - x * w), 1 - 2 * (x * x + y * y)}}};
}

Angles angles_of(const Basis& b, const std::array<std::size_t, 3>& axes) {
  const auto [i, j, k] = axes;
  const double sign = j == (i + 1) % 3 ? 1.0 : -1.0;
  const double c = std::hypot(b[i][i], b[i][j]);
  Angles angles;
  angles[j] = sign * std::atan2(-b[i][k], c);
  if (c > 1e-9) {
    angles[i] = sign * std::atan2(b[j][k], b[k][k]);
    angles[k] = sign * std::atan2(b[i][j], b[i][i]);
  } else {  // the first and the last axis coincide: all of it on the first
    angles[i] = sign * std::atan2(-b[k][j], b[j][j]);
    angles[k] = 0.0;
  }
  return angles;
}

}  // namespace

Angles blend_rotations(const Angles& a, const Angles& b, double weight, double order) {
  if (weight == 0.0) return a;
  if (weight == 1.0) return b;
  const auto& axes = kOrders[order >= 0.0 && order < 6.0 ? static_cast<std::size_t>(order) : 0];
  const Quaternion from = quaternion(a, axes);
  Quaternion to = quaternion(b, axes);
  double dot = 0.0;
  for (std::size_t i = 0; i < 4; ++i) dot += from[i] * to[i];
  if (dot < 0.0) {
    for (double& v : to) v = -v;
    dot = -dot;
  }
  const double angle = std::acos(std::min(dot, 1.0));
  // Nearly the same rotation: the straight way, since the sine below would vanish.
  const bool near = !(angle > 1e-6);
  const double keep = near ? 1.0 - weight : std::sin((1.0 - weight) * angle) / std::sin(angle);
  const double take = near ? weight : std::sin(weight * angle) / std::sin(angle);
  Quaternion q;
  double length = 0.0;
  for (std::size_t i = 0; i < 4; ++i) {
    q[i] = keep * from[i] + take * to[i];
    length += q[i] * q[i];
  }
  for (double& v : q) v /= std::sqrt(length);
  return angles_of(basis(q), axes);
}

}  // namespace vantorelix::standalone
