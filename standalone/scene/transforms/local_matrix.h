// A node's local matrix from its channels. PlainMatrices calls local_matrix_of, for one time. Positions works out many
// times at once and keeps what does not change between them; it calls the functions below with the same arguments as
// local_matrix_of does, so that both give the same bits. Whoever changes one of these functions changes both.
//
//   M = SP^-1 * S * SH * SP * ST * RP^-1 * RA * R * JO * IS * RP * RT * T        (row vectors)
//
// SP scale pivot, S scale, SH shear, ST scale pivot translate; RP rotate pivot, RA rotate axis, R rotate, JO joint
// orient, IS inverse scale (of joints with segmentScaleCompensate), RT rotate pivot translate; T translate. ^-1 is the
// inverse. An inverse scale of zero gives infinities, and from there NaN: nothing is clamped.
// For the files of standalone/scene only.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "base/matrix.h"
#include "base/vector.h"
#include "standalone/scene/transforms/channel.h"
#include "standalone/scene/transforms/rotation.h"

namespace vantorelix::standalone {

using Channels = std::array<double, static_cast<std::size_t>(Channel::count)>;

constexpr std::size_t index(Channel c) { return static_cast<std::size_t>(c); }
// Sets of channels: bit(c) for each.
constexpr std::uint64_t bit(Channel c) { return std::uint64_t{1} << index(c); }
// The three channels from `first` on.
constexpr std::uint64_t triple(Channel first) { return std::uint64_t{7} << index(first); }

inline Vector vector_at(const Channels& c, Channel first) {
  return {c[index(first)], c[index(first) + 1], c[index(first) + 2]};
}

// The values of the identity matrix: zeros, but for scales of 1, and the two switches on.
inline constexpr Channels kRestChannels = [] {
  Channels c{};
  for (const Channel first : {Channel::scaleX, Channel::inverseScaleX})
    for (std::size_t i = 0; i < 3; ++i) c[index(first) + i] = 1.0;
  c[index(Channel::inheritsTransform)] = 1.0;
  c[index(Channel::segmentScaleCompensate)] = 1.0;
  return c;
}();

// Which factors of the formula can differ from the identity, at any time. The others must be left out of every product:
// multiplying by an identity could turn -0 into 0, and infinities into NaN.
struct Factors {
  bool rotate = false;
  bool scale = false;
  bool shear = false;
  bool rotate_axis = false;
  bool joint_orient = false;
  bool pivots = false;
  bool inverse_scale = false;
};

// `driven` is the set of channels that something drives; of all others `c` has the values.
inline Factors factors_of(const Channels& c, std::uint64_t driven, bool joint) {
  std::uint64_t busy = driven;
  for (std::size_t i = 0; i < c.size(); ++i)
    if (!(c[i] == kRestChannels[i])) busy |= std::uint64_t{1} << i;
  const auto any = [busy](Channel first) { return (busy & triple(first)) != 0; };
  Factors f;
  f.rotate = any(Channel::rotateX);
  f.scale = any(Channel::scaleX);
  f.shear = any(Channel::shearXY);
  f.rotate_axis = any(Channel::rotateAxisX);
  f.joint_orient = joint && any(Channel::jointOrientX);
  f.pivots = any(Channel::rotatePivotX) || any(Channel::rotatePivotTranslateX) || any(Channel::scalePivotX) ||
             any(Channel::scalePivotTranslateX);
  f.inverse_scale = joint && any(Channel::inverseScaleX);
  return f;
}

struct Rotations {
  Basis axis;
  Basis rotate;
  Basis orient;
};

inline Basis rotation_of(const Channels& c, Channel first, int order = 0) {
  const Vector angles = vector_at(c, first);
  return rotation(angles.x, angles.y, angles.z, order);
}

// A number that does not stand for an order counts as 0, xyz.
inline int rotate_order(double value) { return value >= 0.0 && value < 6.0 ? static_cast<int>(value) : 0; }
inline int rotate_order_of(const Channels& c) { return rotate_order(c[index(Channel::rotateOrder)]); }

inline Basis rotate_of(const Channels& c) { return rotation_of(c, Channel::rotateX, rotate_order_of(c)); }

inline Rotations rotations_of(const Channels& c, const Factors& f) {
  Rotations r;
  if (f.rotate_axis) r.axis = rotation_of(c, Channel::rotateAxisX);
  if (f.rotate) r.rotate = rotate_of(c);
  if (f.joint_orient) r.orient = rotation_of(c, Channel::jointOrientX);
  return r;
}

inline constexpr Basis kIdentityBasis = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

// RA * R * JO * IS; `r` is what rotations_of gives for `c` and `f`.
inline Basis turn(const Channels& c, const Factors& f, const Rotations& r) {
  Basis b = f.rotate ? r.rotate : kIdentityBasis;
  if (f.rotate_axis) b = product(r.axis, b);
  if (f.joint_orient) b = product(b, r.orient);
  if (f.inverse_scale && c[index(Channel::segmentScaleCompensate)] != 0.0) {
    for (std::size_t j = 0; j < 3; ++j) {
      const double inverse = 1.0 / c[index(Channel::inverseScaleX) + j];
      for (std::size_t i = 0; i < 3; ++i) b[i][j] = b[i][j] * inverse;
    }
  }
  return b;
}

// p * S * SH, for pivot_shift.
inline Vector stretch(const Channels& c, const Factors& f, const Vector& p) {
  Vector v = {p.x * c[index(Channel::scaleX)], p.y * c[index(Channel::scaleY)], p.z * c[index(Channel::scaleZ)]};
  if (f.shear) {
    v.x = v.x + v.y * c[index(Channel::shearXY)] + v.z * c[index(Channel::shearXZ)];
    v.y = v.y + v.z * c[index(Channel::shearYZ)];
  }
  return v;
}

// S * SH * turned: the upper three rows of the local matrix. `turned` is what `turn` gives.
inline void set_rows(Affine& m, const Channels& c, const Factors& f, const Basis& turned) {
  for (std::size_t i = 0; i < 3; ++i) m.m[i] = turned[i];
  if (f.shear) {
    for (std::size_t j = 0; j < 3; ++j) {
      m.m[2][j] = c[index(Channel::shearXZ)] * turned[0][j] + c[index(Channel::shearYZ)] * turned[1][j] + turned[2][j];
      m.m[1][j] = c[index(Channel::shearXY)] * turned[0][j] + turned[1][j];
    }
  }
  if (!f.scale) return;
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j < 3; ++j) m.m[i][j] = c[index(Channel::scaleX) + i] * m.m[i][j];
}

// True for most nodes: the local matrix is S * R * T and nothing else. compose_columns in positions.cpp multiplies
// these itself, and must do so in the same order as set_rows.
inline bool is_scale_and_rotate(const Factors& f) {
  return f.rotate && !f.shear && !f.rotate_axis && !f.joint_orient && !f.inverse_scale && !f.pivots;
}

// Where all factors but T move the origin: the translation row without T. Zero without pivots.
// `turned` is what `turn` gives for the same channels.
inline Vector pivot_shift(const Channels& c, const Factors& f, const Basis& turned) {
  const Vector sp = vector_at(c, Channel::scalePivotX), st = vector_at(c, Channel::scalePivotTranslateX);
  const Vector rp = vector_at(c, Channel::rotatePivotX), rt = vector_at(c, Channel::rotatePivotTranslateX);
  const Vector s = stretch(c, f, {-sp.x, -sp.y, -sp.z});
  const Vector v = {s.x + sp.x + st.x - rp.x, s.y + sp.y + st.y - rp.y, s.z + sp.z + st.z - rp.z};
  const Basis& b = turned;
  return {v.x * b[0][0] + v.y * b[1][0] + v.z * b[2][0] + rp.x + rt.x,
          v.x * b[0][1] + v.y * b[1][1] + v.z * b[2][1] + rp.y + rt.y,
          v.x * b[0][2] + v.y * b[1][2] + v.z * b[2][2] + rp.z + rt.z};
}

// The translation row. `shift` is what pivot_shift gives; it is not read where f.pivots is false.
inline Vector placed(const Channels& c, const Factors& f, const Vector& shift) {
  const Vector t = vector_at(c, Channel::translateX);
  if (!f.pivots) return t;
  return {shift.x + t.x, shift.y + t.y, shift.z + t.z};
}

inline void set_translation(Affine& m, const Vector& t) { m.m[3] = {t.x, t.y, t.z}; }

// The matrix from its channels alone.
inline Affine local_matrix_of(const Channels& c, const Factors& f) {
  const Basis turned = turn(c, f, rotations_of(c, f));
  Affine m;
  set_rows(m, c, f, turned);
  set_translation(m, placed(c, f, f.pivots ? pivot_shift(c, f, turned) : Vector{}));
  return m;
}

}  // namespace vantorelix::standalone
