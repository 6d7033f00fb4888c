// Affine transforms with row vectors: p' = p * M, the translation in the last row.
#pragma once

#include <array>
#include <cstddef>

#include "base/vector.h"

namespace vantorelix {

// Rows 0..2 are the images of the axes, row 3 the translation; the fourth column is always (0, 0, 0, 1).
struct Affine {
  std::array<std::array<double, 3>, 4> m = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}}};

  Vector translation() const { return {m[3][0], m[3][1], m[3][2]}; }
  friend bool operator==(const Affine&, const Affine&) = default;
};

// p * M, where number(i, j) is M's row i, column j.
template <class Number>
inline Vector transform_point_by(const Vector& p, const Number& number) {
  return {p.x * number(0, 0) + p.y * number(1, 0) + p.z * number(2, 0) + number(3, 0),
          p.x * number(0, 1) + p.y * number(1, 1) + p.z * number(2, 1) + number(3, 1),
          p.x * number(0, 2) + p.y * number(1, 2) + p.z * number(2, 2) + number(3, 2)};
}

inline Vector transform_point(const Vector& p, const Affine& t) {
  return transform_point_by(p, [&t](std::size_t i, std::size_t j) { return t.m[i][j]; });
}

// First a, then b. The last row is bit for bit transform_point(a.translation(), b).
inline Affine operator*(const Affine& a, const Affine& b) {
  Affine r;
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j < 3; ++j)
      r.m[i][j] = a.m[i][0] * b.m[0][j] + a.m[i][1] * b.m[1][j] + a.m[i][2] * b.m[2][j];
  const Vector t = transform_point(a.translation(), b);
  r.m[3] = {t.x, t.y, t.z};
  return r;
}

}  // namespace vantorelix
