#include "standalone/scene/transforms/quaternion.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "base/mathematics/mathematics.h"

namespace vantorelix::standalone {
namespace {

// The axes in the order of their turns.
constexpr std::array<std::array<std::size_t, 3>, 6> kOrders = {
    {{0, 1, 2}, {1, 2, 0}, {2, 0, 1}, {0, 2, 1}, {1, 0, 2}, {2, 1, 0}}};

const std::array<std::size_t, 3>& axes_of(double order) {
  return kOrders[order >= 0.0 && order < 6.0 ? static_cast<std::size_t>(order) : 0];
}

// First a, then b.
Quaternion then(const Quaternion& a, const Quaternion& b) {
  return {b[3] * a[0] + b[0] * a[3] + b[1] * a[2] - b[2] * a[1], b[3] * a[1] - b[0] * a[2] + b[1] * a[3] + b[2] * a[0],
          b[3] * a[2] + b[0] * a[1] - b[1] * a[0] + b[2] * a[3], b[3] * a[3] - b[0] * a[0] - b[1] * a[1] - b[2] * a[2]};
}

}  // namespace

Quaternion quaternion_of(const Angles& angles, double order) {
  const SinCos t = sin_cos(angles[0] / 2, angles[1] / 2, angles[2] / 2);
  Quaternion q = {0, 0, 0, 1};
  for (const std::size_t axis : axes_of(order)) {
    Quaternion turn = {0, 0, 0, t.cos[axis]};
    turn[axis] = t.sin[axis];
    q = then(q, turn);
  }
  return q;
}

Basis basis_of(const Quaternion& q) {
  const double x = q[0], y = q[1], z = q[2], w = q[3];
  return {{{1 - 2 * (y * y + z * z), 2 * (x * y + z * w), 2 * (x * z - y * w)},
           {2 * (x * y - z * w), 1 - 2 * (x * x + z * z), 2 * (y * z + x * w)},
           {2 * (x * z + y * w), 2 * (y * z - x * w), 1 - 2 * (x * x + y * y)}}};
}

Angles angles_of(const Basis& b, double order) {
  const auto [i, j, k] = axes_of(order);
  const double sign = j == (i + 1) % 3 ? 1.0 : -1.0;
  const double c = base::hypot(b[i][i], b[i][j]);
  // Near the lock the last turn is mostly noise. The first is read off the matrix without the last, whatever that
  // came to, so that the two together are right.
  const double last = c > 1e-15 ? base::atan2(b[i][j], b[i][i]) : 0.0;
  const auto [sine, cosine] = base::sin_cos(last);
  Angles angles;
  angles[k] = sign * last;
  angles[j] = sign * base::atan2(-b[i][k], c);
  angles[i] = sign * base::atan2(sine * b[k][i] - cosine * b[k][j], cosine * b[j][j] - sine * b[j][i]);
  return angles;
}

double dot(const Quaternion& a, const Quaternion& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3]; }

bool normalise(Quaternion& q) {
  // By the largest component first: squares of tiny or huge ones would vanish or overflow.
  const double largest = std::max({std::abs(q[0]), std::abs(q[1]), std::abs(q[2]), std::abs(q[3])});
  if (!(largest > 0.0) || !std::isfinite(largest)) return false;
  Quaternion scaled = q;
  for (double& v : scaled) v /= largest;
  const double length = std::sqrt(dot(scaled, scaled));
  if (!std::isfinite(length)) return false;  // one of them is not a number
  for (std::size_t i = 0; i < 4; ++i) q[i] = scaled[i] / length;
  return true;
}

Quaternion slerp(const Quaternion& a, const Quaternion& b, double weight) {
  const double sign = dot(a, b) < 0.0 ? -1.0 : 1.0;
  Quaternion difference, sum;
  for (std::size_t i = 0; i < 4; ++i) {
    difference[i] = a[i] - sign * b[i];
    sum[i] = a[i] + sign * b[i];
  }
  // Not the arc cosine of the dot product, which knows small angles to half of the digits only.
  const double angle = 2.0 * base::atan2(std::sqrt(dot(difference, difference)), std::sqrt(dot(sum, sum)));
  // Nearly the same rotation: the straight way, since the sine below would vanish.
  const bool near = !(angle > 1e-6);
  const double sine = base::sin(angle);
  const double keep = near ? 1.0 - weight : base::sin((1.0 - weight) * angle) / sine;
  const double take = sign * (near ? weight : base::sin(weight * angle) / sine);
  Quaternion q;
  for (std::size_t i = 0; i < 4; ++i) q[i] = keep * a[i] + take * b[i];
  normalise(q);
  return q;
}

}  // namespace vantorelix::standalone
