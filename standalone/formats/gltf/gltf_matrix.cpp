#include "standalone/formats/gltf/gltf_matrix.h"

#include <algorithm>
#include <cmath>

#include "base/mathematics/mathematics.h"
#include "standalone/scene/transforms/quaternion.h"

namespace vantorelix::standalone {
namespace {

using Row = std::array<double, 3>;

double dot(const Row& a, const Row& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

// a - k b
Row less(const Row& a, double k, const Row& b) { return {a[0] - k * b[0], a[1] - k * b[1], a[2] - k * b[2]}; }

// A matrix of three rows taken apart into scale, shear and rotation: rows = S * SH * R.
struct Parts {
  Row scale;
  Row shear;  // xy, xz, yz
  Basis rotation;
};

// Divides a row by its length, and returns the length.
double take_length(Row& row) {
  const double length = base::hypot(row[0], row[1], row[2]);
  for (double& v : row) v /= length;
  return length;
}

Parts take_apart(const Basis& rows) {
  Parts p;
  Row &x = p.rotation[0], &y = p.rotation[1], &z = p.rotation[2];
  x = rows[0];
  p.scale[0] = take_length(x);
  const double xy = dot(rows[1], x);
  y = less(rows[1], xy, x);
  p.scale[1] = take_length(y);
  const double xz = dot(rows[2], x), yz = dot(rows[2], y);
  z = less(less(rows[2], xz, x), yz, y);
  p.scale[2] = take_length(z);
  p.shear = {xy / p.scale[1], xz / p.scale[2], yz / p.scale[2]};
  const Row cross = {x[1] * y[2] - x[2] * y[1], x[2] * y[0] - x[0] * y[2], x[0] * y[1] - x[1] * y[0]};
  if (dot(cross, z) < 0.0) {  // a mirror image: the first axis points the other way
    for (double& v : x) v = -v;
    p.scale[0] = -p.scale[0];
    p.shear[0] = -p.shear[0];
    p.shear[1] = -p.shear[1];
  }
  return p;
}

// Whether the parts make up the rows again. False for anything that is not a number.
bool make_up(const Parts& p, const Basis& rows) {
  double worst = 0.0, largest = 0.0;
  const Basis& r = p.rotation;
  for (std::size_t j = 0; j < 3; ++j) {
    const Row again = {p.scale[0] * r[0][j], p.scale[1] * (p.shear[0] * r[0][j] + r[1][j]),
                       p.scale[2] * (p.shear[1] * r[0][j] + p.shear[2] * r[1][j] + r[2][j])};
    for (std::size_t i = 0; i < 3; ++i) {
      if (!std::isfinite(again[i])) return false;
      worst = std::max(worst, std::abs(again[i] - rows[i][j]));
      largest = std::max(largest, std::abs(rows[i][j]));
    }
  }
  // Two axes in nearly the same place leave a third direction that is mostly rounding: no rotation.
  const bool square = std::abs(dot(r[0], r[1])) + std::abs(dot(r[0], r[2])) + std::abs(dot(r[1], r[2])) < 1e-12;
  return square && worst <= 1e-14 * largest;
}

}  // namespace

void place_by_matrix(Scene& scene, NodeId node, const std::array<double, 16>& matrix) {
  Basis rows;
  for (std::size_t i = 0; i < 3; ++i) rows[i] = {matrix[4 * i], matrix[4 * i + 1], matrix[4 * i + 2]};
  const Parts parts = take_apart(rows);
  if (!make_up(parts, rows)) {
    scene.attributes.set_offset_parent_matrix(node, matrix);
    return;
  }
  scene.attributes.set_channels(node, Channel::translateX, {matrix[12], matrix[13], matrix[14]});
  scene.attributes.set_channels(node, Channel::rotateX, angles_of(parts.rotation, 0));
  scene.attributes.set_channels(node, Channel::scaleX, parts.scale);
  // What is left of axes at right angles is rounding.
  const bool slanted =
      std::any_of(parts.shear.begin(), parts.shear.end(), [](double s) { return std::abs(s) > 1e-15; });
  if (slanted) scene.attributes.set_channels(node, Channel::shearXY, parts.shear);
}

}  // namespace vantorelix::standalone
