// Rotations from Euler angles, the same bits from every compiler and build type.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>

#include "base/mathematics/mathematics.h"
#include "base/mathematics/sine_kernel.h"

namespace vantorelix::standalone {

// A 3 x 3 matrix, row vectors: row i is the image of axis i.
using Basis = std::array<std::array<double, 3>, 3>;

// Sines and cosines of three angles in radians.
struct SinCos {
  double sin[3];
  double cos[3];
};

// Three angles without a branch overlap.
inline SinCos sin_cos(double x, double y, double z) {
  SinCos out;
  if (std::abs(x) <= base::kSineReach && std::abs(y) <= base::kSineReach && std::abs(z) <= base::kSineReach) {
    base::set_sin_cos(out, 0, x);
    base::set_sin_cos(out, 1, y);
    base::set_sin_cos(out, 2, z);
    return out;
  }
  const base::SinCos turns[3] = {base::sin_cos(x), base::sin_cos(y), base::sin_cos(z)};
  for (std::size_t i = 0; i < 3; ++i) {
    out.sin[i] = turns[i].sin;
    out.cos[i] = turns[i].cos;
  }
  return out;
}

// The rotation that turns about axis I first, then J, then K. Orders that are not a cyclic shift of xyz are the mirror
// image of one that is: every sine changes its sign. `Rows` is a Basis or the rows of an Affine.
template <std::size_t I, std::size_t J, std::size_t K, class Rows, class Turns>
inline void set_rotation_in_order(Rows& b, const Turns& t) {
  constexpr double kSign = (J == (I + 1) % 3) ? 1.0 : -1.0;
  const double si = kSign * t.sin[I], sj = kSign * t.sin[J], sk = kSign * t.sin[K];
  const double ci = t.cos[I], cj = t.cos[J], ck = t.cos[K];
  b[I][I] = cj * ck;
  b[I][J] = cj * sk;
  b[I][K] = -sj;
  b[J][I] = si * sj * ck - ci * sk;
  b[J][J] = si * sj * sk + ci * ck;
  b[J][K] = si * cj;
  b[K][I] = ci * sj * ck + si * sk;
  b[K][J] = ci * sj * sk - si * ck;
  b[K][K] = ci * cj;
}

// Calls `go` with the axes in the order in which Channel::rotateOrder counts them; anything else is xyz.
template <class Go>
inline void in_order(int order, const Go& go) {
  switch (order) {
    case 1:
      return go.template operator()<1, 2, 0>();
    case 2:
      return go.template operator()<2, 0, 1>();
    case 3:
      return go.template operator()<0, 2, 1>();
    case 4:
      return go.template operator()<1, 0, 2>();
    case 5:
      return go.template operator()<2, 1, 0>();
    default:
      return go.template operator()<0, 1, 2>();
  }
}

template <class Rows>
inline void set_rotation(Rows& rows, const SinCos& t, int order) {
  in_order(order, [&]<std::size_t I, std::size_t J, std::size_t K>() { set_rotation_in_order<I, J, K>(rows, t); });
}

// Angles in radians.
inline Basis rotation(double x, double y, double z, int order) {
  Basis b;
  set_rotation(b, sin_cos(x, y, z), order);
  return b;
}

// First a, then b.
inline Basis product(const Basis& a, const Basis& b) {
  Basis r;
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j < 3; ++j) r[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j];
  return r;
}

}  // namespace vantorelix::standalone
