// Rotations from Euler angles, the same bits from every compiler and build type.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vantorelix::standalone {

// A 3 x 3 matrix, row vectors: row i is the image of axis i.
using Basis = std::array<std::array<double, 3>, 3>;

// Sines and cosines of three angles in radians.
struct SinCos {
  double sin[3];
  double cos[3];
};

// Sine and cosine of a multiple of pi/32, each as the nearest double and what that leaves out.
struct SinCosNode {
  double sin, sin_rest, cos, cos_rest;
};

// The whole circle.
struct SinCosNodes {
  static constexpr std::size_t kCount = 64;
  SinCosNode at[kCount];
};
inline constexpr SinCosNodes kSinCosNodes = [] {
  constexpr std::array<std::array<double, 2>, 17> kQuarter = {{{0.0, 0.0},
                                                               {0.0980171403295606, -1.634582362244256e-18},
                                                               {0.19509032201612828, -7.991079068461731e-18},
                                                               {0.2902846772544624, -1.892797870777425e-17},
                                                               {0.3826834323650898, -1.0050772696461588e-17},
                                                               {0.47139673682599764, 6.516678136069013e-18},
                                                               {0.5555702330196022, 4.709410940561677e-17},
                                                               {0.6343932841636455, 1.0420901929280035e-17},
                                                               {0.7071067811865476, -4.833646656726457e-17},
                                                               {0.773010453362737, -3.256590703364977e-17},
                                                               {0.8314696123025452, 1.4073856984728024e-18},
                                                               {0.881921264348355, -1.9843248405890562e-17},
                                                               {0.9238795325112867, 1.7645047084336677e-17},
                                                               {0.9569403357322088, 4.05538698618757e-17},
                                                               {0.9807852804032304, 1.8546939997825006e-17},
                                                               {0.9951847266721969, -4.248691367830441e-17},
                                                               {1.0, 0.0}}};
  SinCosNodes nodes{};
  for (std::size_t i = 0; i < SinCosNodes::kCount; ++i) {
    const std::size_t quadrant = i / 16, up = i % 16, down = 16 - up;
    const auto& s = kQuarter[quadrant % 2 == 0 ? up : down];
    const auto& c = kQuarter[quadrant % 2 == 0 ? down : up];
    const double s_sign = quadrant < 2 ? 1.0 : -1.0, c_sign = quadrant == 0 || quadrant == 3 ? 1.0 : -1.0;
    nodes.at[i] = {s_sign * s[0], s_sign * s[1], c_sign * c[0], c_sign * c[1]};
  }
  return nodes;
}();

// Beyond this the reduction below runs out of exact bits, and the library's functions take over.
inline constexpr double kSinCosReach = 1e5;

// Written out instead of std::sin because the library's last bit differs between platforms, and because three of these
// without a branch overlap. Within 2 ulp of the true value for |angle| <= kSinCosReach. The angle is a multiple of
// pi/32 and a rest of at most pi/64; the multiples are taken off in three parts, the first two short enough for exact
// products, and the rest needs only short polynomials (Chebyshev interpolants, their own error below 2e-18).
// `Out` is SinCos, or a type of the same shape.
template <class Out>
inline void set_sin_cos(Out& out, std::size_t axis, double angle) {
  constexpr double kRound = 6755399441055744.0;  // 1.5 * 2^52: adding it rounds to a whole number
  constexpr double kPerNode = 10.185916357881302;
  constexpr double kNode1 = 1.5707963267341256 / 16, kNode2 = 6.077100506303966e-11 / 16,
                   kNode3 = 2.0222662487959506e-21 / 16;
  const double shifted = angle * kPerNode + kRound;
  const double steps = shifted - kRound;
  std::uint64_t bits;
  std::memcpy(&bits, &shifted, sizeof bits);
  const SinCosNode& node = kSinCosNodes.at[bits % SinCosNodes::kCount];
  const double first = angle - steps * kNode1;
  const double second = steps * kNode2;
  const double r = first - second;
  const double left = ((first - r) - second) - steps * kNode3;
  const double q = r * r;
  const double s =
      r + (left + r * q * (-0.16666666666666546 + q * (0.008333333324330089 + q * -0.0001984027364669203)));
  const double c =
      q * (-0.5 + q * (0.041666666666666546 + q * (-0.0013888888879885597 + q * 2.4800591102917088e-05)));  // less one
  out.sin[axis] = node.sin + (node.cos * s + (node.sin * c + node.sin_rest));
  out.cos[axis] = node.cos + ((node.cos * c + node.cos_rest) - node.sin * s);
}

inline SinCos sin_cos(double x, double y, double z) {
  SinCos out;
  if (std::abs(x) <= kSinCosReach && std::abs(y) <= kSinCosReach && std::abs(z) <= kSinCosReach) {
    set_sin_cos(out, 0, x);
    set_sin_cos(out, 1, y);
    set_sin_cos(out, 2, z);
  } else {
    out = {{std::sin(x), std::sin(y), std::sin(z)}, {std::cos(x), std::cos(y), std::cos(z)}};
  }
  return out;
}

// The rotation that turns about axis I first, then J, then K. Orders that are no cyclic shift of xyz are the mirror
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
