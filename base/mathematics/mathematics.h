// Sine, arc tangent and their like, the same bits from every compiler, build type, processor and C library: the
// library's own functions differ in the last place from one system to the next.
//
// Made of + - * / and square roots of doubles, which IEEE 754 defines to the last bit, in the order that is written
// (so -ffp-contract=off, and no -ffast-math). Within 1 ulp of the true value for every argument. Zeros with a sign,
// infinities and what is not a number are answered as in Annex F of the C standard; errno is left alone.
// base/mathematics/mathematics_accuracy.cpp measures the errors against a library of many digits.
#pragma once

#include <numbers>

namespace vantorelix::base {

// In radians.
inline constexpr double kDegree = std::numbers::pi / 180.0;

struct SinCos {
  double sin, cos;
};

// Angles in radians, of any size.
double sin(double angle);
double cos(double angle);
// Both, for little more than the price of one.
SinCos sin_cos(double angle);

// The angle of the point (x, y) in [-pi, pi].
double atan2(double y, double x);
// Not a number beyond [-1, 1].
double asin(double sine);
double acos(double cosine);

// The length of a vector. No square in it overflows or vanishes.
double hypot(double x, double y);
double hypot(double x, double y, double z);

// The natural logarithm. Minus infinity of zero; not a number of what is below.
double log(double x);
// For a base that is not negative and an exponent in [0, 1]; not a number for others.
double pow(double base, double exponent);

}  // namespace vantorelix::base
