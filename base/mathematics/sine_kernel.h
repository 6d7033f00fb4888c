// Sine and cosine of one angle without a branch, as a piece of code for loops that a compiler can widen. Others call
// mathematics.h.
//
// Method: the angle is a multiple of pi/32 and a rest r of at most pi/64. The multiples are taken off in three parts of
// pi/32, as Cody and Waite do ("Software Manual for the Elementary Functions", 1980). Sine and cosine of the multiple
// come from a table, as in Gal's and Tang's methods; with those of r, which need short polynomials only, the addition
// theorem makes up the result. The table's numbers and r are split so that the leading product and sum lose nothing:
// all that is rounded before the last sum is small beside the result, which is within 0.55 ulp of the true value.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/mathematics/mathematics_tables.h"

namespace vantorelix::base {

// Sine and cosine of a multiple of pi/32, each as a multiple of 2^-24 and the rest.
struct SineNode {
  double sin, sin_rest, cos, cos_rest;
};

// The whole circle.
struct SineNodes {
  static constexpr std::size_t kCount = 64;
  SineNode at[kCount];
};
inline constexpr SineNodes kSineNodes = [] {
  SineNodes nodes{};
  for (std::size_t i = 0; i < SineNodes::kCount; ++i) {
    const std::size_t quadrant = i / 16, up = i % 16, down = 16 - up;
    const auto& s = tables::kSines[quadrant % 2 == 0 ? up : down];
    const auto& c = tables::kSines[quadrant % 2 == 0 ? down : up];
    const double s_sign = quadrant < 2 ? 1.0 : -1.0, c_sign = quadrant == 0 || quadrant == 3 ? 1.0 : -1.0;
    nodes.at[i] = {s_sign * s[0], s_sign * s[1], c_sign * c[0], c_sign * c[1]};
  }
  nodes.at[0].sin = -0.0;  // so that the sine of minus zero is minus zero
  return nodes;
}();

// Beyond this the number of nodes has more than twenty binary digits, and its products below are not exact.
inline constexpr double kSineReach = 1e5;

// The sine and cosine of node * pi/32 + r + left, where |left| is below the last place of r. `Out` has the arrays `sin`
// and `cos`; its type must be local to the unit where that is compiled for certain processors only.
template <class Out>
inline void set_sin_cos_from(Out& out, std::size_t axis, std::uint64_t node, double r, double left) {
  const SineNode& n = kSineNodes.at[node % SineNodes::kCount];
  std::uint64_t bits;
  std::memcpy(&bits, &r, sizeof bits);
  bits &= ~std::uint64_t{0x7ffffff};
  double high;  // the first 26 digits of r
  std::memcpy(&high, &bits, sizeof high);
  const double q = r * r;
  // sin(r) = high - low. Subtracted rather than added, which keeps the sign of minus zero.
  const double low = ((high - r) - left) - r * q * (tables::kSine[0] + q * (tables::kSine[1] + q * tables::kSine[2]));
  const double c =
      q * (-0.5 + q * (tables::kCosine[0] + q * (tables::kCosine[1] + q * tables::kCosine[2])));  // less one
  // The products are exact, and what a sum loses is the product less what the sum gained.
  const double sin_step = n.cos * high, cos_step = n.sin * high;
  const double sin_high = n.sin + sin_step, cos_high = n.cos - cos_step;
  const double sin_lost = sin_step - (sin_high - n.sin), cos_lost = (n.cos - cos_high) - cos_step;
  const double sin = n.sin + n.sin_rest, cos = n.cos + n.cos_rest;
  out.sin[axis] = sin_high - (((cos * low - n.cos_rest * high) - (sin * c + n.sin_rest)) - sin_lost);
  out.cos[axis] = cos_high + (((sin * low - n.sin_rest * high) + (cos * c + n.cos_rest)) + cos_lost);
}

// For |angle| <= kSineReach, in radians.
template <class Out>
inline void set_sin_cos(Out& out, std::size_t axis, double angle) {
  constexpr double kRound = 6755399441055744.0;  // 1.5 * 2^52: adding it rounds to a whole number
  const double shifted = angle * tables::kNodesPerRadian + kRound;
  const double nodes = shifted - kRound;
  std::uint64_t bits;
  std::memcpy(&bits, &shifted, sizeof bits);
  const double first = angle - nodes * tables::kNode[0];
  const double second = nodes * tables::kNode[1];
  const double r = first - second;
  set_sin_cos_from(out, axis, bits, r, ((first - r) - second) - nodes * tables::kNode[2]);
}

}  // namespace vantorelix::base
