// Rotations from Euler angles, the same bits from every compiler and build type.
#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace vantorelix::standalone {

// A 3 x 3 matrix, row vectors: row i is the image of axis i.
using Basis = std::array<std::array<double, 3>, 3>;

// Sines and cosines of three angles in radians.
struct SinCos {
  std::array<double, 3> sin;
  std::array<double, 3> cos;
};

// Beyond this the reduction below runs out of exact bits, and the library's functions take over.
inline constexpr double kSinCosReach = 1e5;

// Written out instead of std::sin because the library's last bit differs between platforms, and because three of these
// without a branch overlap. Within 2 ulp of the true value for |angle| <= kSinCosReach. The angle is reduced by
// multiples of pi/2 in three parts, the first two short enough for exact products; the polynomials are Chebyshev
// interpolants on [-pi/4, pi/4], their own error below 2e-17.
inline void sin_cos_near(double angle, double& sine, double& cosine) {
  constexpr double kRound = 6755399441055744.0;  // 1.5 * 2^52: adding it rounds to a whole number
  constexpr double kTwoOverPi = 0.63661977236758134308;
  constexpr double kHalfPi1 = 1.5707963267341256, kHalfPi2 = 6.077100506303966e-11, kHalfPi3 = 2.0222662487959506e-21;
  const double shifted = angle * kTwoOverPi + kRound;
  const double turns = shifted - kRound;
  const std::uint64_t quadrant = std::bit_cast<std::uint64_t>(shifted);
  const double first = angle - turns * kHalfPi1;
  const double second = turns * kHalfPi2;
  const double r = first - second;
  const double rest = ((first - r) - second) - turns * kHalfPi3;
  const double q = r * r;
  const double odd =
      q * (0.008333333333330946 +
           q * (-0.0001984126983675497 +
                q * (2.755731610068303e-06 + q * (-2.5051131455427946e-08 + q * 1.591810123027412e-10))));
  const double s = r + (rest + r * q * (-0.16666666666666666 + odd));
  const double half = 0.5 * q;
  const double near_one = 1.0 - half;
  const double even =
      q * (-0.0013888888888887395 +
           q * (2.4801587298763433e-05 +
                q * (-2.7557317270560326e-07 + q * (2.0876146024689747e-09 + q * -1.1382614868556325e-11))));
  const double c = near_one + (((1.0 - near_one) - half) + (q * q * (0.041666666666666664 + even) - r * rest));
  // Odd quadrants swap the two; the signs follow from the quadrant's second bit.
  const std::uint64_t s_bits = std::bit_cast<std::uint64_t>(s), c_bits = std::bit_cast<std::uint64_t>(c);
  const std::uint64_t swap = (s_bits ^ c_bits) & (std::uint64_t{0} - (quadrant & 1));
  sine = std::bit_cast<double>((s_bits ^ swap) ^ ((quadrant & 2) << 62));
  cosine = std::bit_cast<double>((c_bits ^ swap) ^ (((quadrant + 1) & 2) << 62));
}

inline SinCos sin_cos(double x, double y, double z) {
  SinCos out;
  if (std::abs(x) <= kSinCosReach && std::abs(y) <= kSinCosReach && std::abs(z) <= kSinCosReach) {
    sin_cos_near(x, out.sin[0], out.cos[0]);
    sin_cos_near(y, out.sin[1], out.cos[1]);
    sin_cos_near(z, out.sin[2], out.cos[2]);
  } else {
    out.sin = {std::sin(x), std::sin(y), std::sin(z)};
    out.cos = {std::cos(x), std::cos(y), std::cos(z)};
  }
  return out;
}

// The rotation that turns about axis I first, then J, then K. Orders that are no cyclic shift of xyz are the mirror
// image of one that is: every sine changes its sign.
template <std::size_t I, std::size_t J, std::size_t K>
inline Basis rotation_in_order(const SinCos& t) {
  constexpr double kSign = (J == (I + 1) % 3) ? 1.0 : -1.0;
  const double si = kSign * t.sin[I], sj = kSign * t.sin[J], sk = kSign * t.sin[K];
  const double ci = t.cos[I], cj = t.cos[J], ck = t.cos[K];
  Basis b;
  b[I][I] = cj * ck;
  b[I][J] = cj * sk;
  b[I][K] = -sj;
  b[J][I] = si * sj * ck - ci * sk;
  b[J][J] = si * sj * sk + ci * ck;
  b[J][K] = si * cj;
  b[K][I] = ci * sj * ck + si * sk;
  b[K][J] = ci * sj * sk - si * ck;
  b[K][K] = ci * cj;
  return b;
}

// Angles in radians; `order` as Channel::rotateOrder counts them, anything else is xyz.
inline Basis rotation(double x, double y, double z, int order) {
  const SinCos t = sin_cos(x, y, z);
  switch (order) {
    case 1:
      return rotation_in_order<1, 2, 0>(t);
    case 2:
      return rotation_in_order<2, 0, 1>(t);
    case 3:
      return rotation_in_order<0, 2, 1>(t);
    case 4:
      return rotation_in_order<1, 0, 2>(t);
    case 5:
      return rotation_in_order<2, 1, 0>(t);
    default:
      return rotation_in_order<0, 1, 2>(t);
  }
}

// First a, then b.
inline Basis product(const Basis& a, const Basis& b) {
  Basis r;
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j < 3; ++j) r[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j];
  return r;
}

}  // namespace vantorelix::standalone
