#include "base/mathematics/mathematics.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "base/mathematics/mathematics_tables.h"
#include "base/mathematics/sine_kernel.h"

namespace vantorelix::base {
namespace {

static_assert(FLT_EVAL_METHOD == 0, "each operation has to round to a double: compile for SSE2 or newer");

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// --- sine and cosine -------------------------------------------------------------------------------------------------

struct Turn {
  double sin[1], cos[1];
};

// A fraction of a turn, 192 binary digits after the point, the most significant limb first.
using Fraction = std::array<std::uint32_t, 6>;

// The digits after the point of a radian in turns, times 2^shift.
Fraction turns_per_radian(int shift) {
  const int first = shift + 64;
  Fraction digits;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    const std::size_t limb = static_cast<std::size_t>(first / 32) + i;
    const std::uint64_t both = std::uint64_t{tables::kTurnsPerRadian[limb]} << 32 | tables::kTurnsPerRadian[limb + 1];
    digits[i] = static_cast<std::uint32_t>(both >> (32 - first % 32));
  }
  return digits;
}

// What stays after the point of `digits` * `factor`.
Fraction product(const Fraction& digits, std::uint64_t factor) {
  Fraction result{};
  for (std::size_t j = 0; j < 2; ++j, factor >>= 32) {
    std::uint64_t carry = 0;
    for (std::size_t i = digits.size(); i-- > j;) {
      carry += (factor & 0xffffffff) * digits[i] + result[i - j];
      result[i - j] = static_cast<std::uint32_t>(carry);
      carry >>= 32;
    }
  }
  return result;
}

void negate(Fraction& digits) {
  std::uint64_t carry = 1;
  for (std::size_t i = digits.size(); i-- > 0;) {
    carry += static_cast<std::uint32_t>(~digits[i]);
    digits[i] = static_cast<std::uint32_t>(carry);
    carry >>= 32;
  }
}

// 26 binary digits from digit `first` on, as the number that they are after the point.
double digits_at(const Fraction& digits, int first) {
  const auto limb = static_cast<std::size_t>(first / 32);
  const std::uint64_t both = std::uint64_t{digits[limb]} << 32 | digits[limb + 1];
  return std::ldexp(static_cast<double>(both << (first % 32) >> 38), -first - 26);
}

int leading_zeros(const Fraction& digits) {
  const auto limb = std::find_if(digits.begin(), digits.end(), [](std::uint32_t d) { return d != 0; });
  return static_cast<int>(limb - digits.begin()) * 32 + std::countl_zero(*limb);
}

// As set_sin_cos, for finite angles beyond its reach. Payne and Hanek ("Radian Reduction for Trigonometric Functions",
// 1983): of the product with 1/(2 pi) only the digits that matter are worked out. No double comes nearer to a multiple
// of pi/2 than 2^-62, so at least 50 digits of the rest are right below those that are kept.
void set_sin_cos_far(Turn& out, double angle) {
  int exponent;
  const auto mantissa = static_cast<std::uint64_t>(std::ldexp(std::frexp(std::abs(angle), &exponent), 53));
  Fraction rest = product(turns_per_radian(exponent - 53), mantissa);
  const std::uint64_t node = (rest[0] + (std::uint64_t{1} << 25)) >> 26;
  rest[0] -= static_cast<std::uint32_t>(node << 26);
  const bool negative = rest[0] >> 31 != 0;
  if (negative) negate(rest);
  const int first = leading_zeros(rest);
  const double a = digits_at(rest, first), b = digits_at(rest, first + 26), c = digits_at(rest, first + 52);
  const auto& turn = tables::kTurn;
  const double high = a * turn[0];
  const double low = (a * turn[1] + b * turn[0]) + (a * turn[2] + b * turn[1] + c * turn[0]);
  const double r = high + low, left = low - (r - high);
  set_sin_cos_from(out, 0, node, negative ? -r : r, negative ? -left : left);
  if (angle < 0.0) out.sin[0] = -out.sin[0];
}

inline Turn turn_by(double angle) {
  Turn out;
  if (std::abs(angle) <= kSineReach) [[likely]] {
    set_sin_cos(out, 0, angle);
  } else if (std::abs(angle) < kInfinity) {
    set_sin_cos_far(out, angle);
  } else {
    out.sin[0] = out.cos[0] = angle - angle;  // not a number
  }
  return out;
}

// --- numbers of twice the digits -------------------------------------------------------------------------------------

// The sum of a number and a much smaller one.
struct Wide {
  double high, low;
};

// a + b, exactly, where |a| >= |b| or a is zero. Dekker ("A Floating-Point Technique for Extending the Available
// Precision", 1971), as are the products below.
inline Wide sum(double a, double b) {
  const double high = a + b;
  return {high, b - (high - a)};
}

// a + b, exactly. Knuth ("The Art of Computer Programming", volume 2, 4.2.2).
inline Wide any_sum(double a, double b) {
  const double high = a + b, of_b = high - a;
  return {high, (a - (high - of_b)) + (b - of_b)};
}

// The first 26 digits of x. The others are at most 27.
inline double head(double x) {
  return std::bit_cast<double>(std::bit_cast<std::uint64_t>(x) & ~std::uint64_t{0x7ffffff});
}

// x * x, exactly unless the low part is subnormal.
inline Wide square(double x) {
  const double h = head(x), l = x - h, high = x * x;
  return {high, ((h * h - high) + 2.0 * h * l) + l * l};
}

// a * b, with the same exception.
inline Wide product(double a, double b) {
  const double a_head = head(a), a_tail = a - a_head, b_head = head(b), b_tail = b - b_head, high = a * b;
  return {high, ((a_head * b_head - high) + a_head * b_tail + a_tail * b_head) + a_tail * b_tail};
}

// a / b, a high part of 26 digits and 53 more.
inline Wide quotient(const Wide& a, const Wide& b) {
  const double inverse = 1.0 / b.high;
  const double high = head(a.high * inverse), h = head(b.high), l = b.high - h;
  return {high, (((a.high - high * h) - high * l) + (a.low - high * b.low)) * inverse};
}

// --- arc tangent and its like ----------------------------------------------------------------------------------------

// atan(t) - t for |t| <= tan(pi/8).
inline double arc_tangent_rest(double t) {
  const auto& k = tables::kArcTangent;
  const double q = t * t, q2 = q * q, q4 = q2 * q2;
  const double low = (k[0] + q * k[1]) + q2 * (k[2] + q * k[3]);
  const double middle = (k[4] + q * k[5]) + q2 * (k[6] + q * k[7]);
  const double high = (k[8] + q * k[9]) + q2 * (k[10] + q * k[11]);
  return t * q * (low + q4 * (middle + q4 * high));
}

// An angle that lies `high` + `low` beyond an eighth of a turn where `sign` is 1, and before it where that is -1.
inline double from_eighth(int eighth, double sign, double high, double low) {
  const auto& start = tables::kEighths[static_cast<std::size_t>(eighth)];
  const Wide s = sum(start[0], sign * high);
  return s.high + (s.low + (start[1] + sign * low));
}

// The angle of (x, y), y >= 0, in [0, pi]. Neither is tiny, huge or not finite, but the smaller may be zero.
//
// In the eighth of a turn next to an axis the tangent is smaller / larger; in the one beyond, counted from the
// diagonal, (smaller - larger) / (smaller + larger). So the polynomial reaches to pi/8 only. The division leaves no
// rest, so only the last sum rounds what matters: within 0.75 ulp.
inline double angle_of(double y, double x) {
  const double width = std::abs(x);
  const bool steep = y > width;
  const double a = steep ? width : y, b = steep ? y : width;
  const bool diagonal = a > b * tables::kTangentOfEighth;
  const double with = diagonal ? 1.0 : 0.0;
  const double above = a - with * b, below = b + with * a;
  const Wide t = quotient({above, a - (above + with * b)}, {below, with * a - (below - b)});
  const double rest = t.low + arc_tangent_rest(t.high + t.low);
  const int eighth = diagonal ? 1 : (steep ? 2 : 0);
  const bool mirrored = x < 0.0;
  return from_eighth(mirrored ? 4 - eighth : eighth, steep != mirrored ? -1.0 : 1.0, t.high, rest);
}

constexpr double kSmall = 0x1p-500, kLarge = 0x1p500;

double eighths(int count) { return from_eighth(count, 1.0, 0.0, 0.0); }

// As angle_of, for all that it does not take.
double angle_of_unusual(double y, double x) {
  const double width = std::abs(x);
  const bool left = std::signbit(x);
  if (width == kInfinity || y == kInfinity)
    return eighths(width != y ? (y == kInfinity ? 2 : (left ? 4 : 0)) : (left ? 3 : 1));
  if (std::max(width, y) == 0.0) return eighths(left ? 4 : 0);
  const int up = y == 0.0 ? -5000 : std::ilogb(y), along = width == 0.0 ? -5000 : std::ilogb(width);
  if (up - along > 100) return eighths(2);
  if (along - up > 100) return left ? eighths(4) : y / x;
  const int scale = -std::max(up, along);
  return angle_of(std::ldexp(y, scale), std::ldexp(x, scale));
}

// asin(x) / x - 1 for |x| <= 1/2, where q = x * x.
inline double arc_sine_rest(double q) {
  const auto& k = tables::kArcSine;
  const double q2 = q * q, q4 = q2 * q2;
  const double low = (k[0] + q * k[1]) + q2 * (k[2] + q * k[3]);
  const double middle = (k[4] + q * k[5]) + q2 * (k[6] + q * k[7]);
  const double high = (k[8] + q * k[9]) + q2 * (k[10] + q * k[11]);
  return q * (low + q4 * (middle + q4 * (high + q4 * k[12])));
}

// acos(x) for 1/2 < x <= 1, by the formula of half the angle: twice asin(sqrt((1 - x) / 2)). Not a number for more.
inline Wide small_arc_cosine(double x) {
  const double q = 0.5 * (1.0 - x);
  const double root = std::sqrt(q), h = head(root);
  const double low = q > 0.0 ? (q - h * h) / (root + h) : 0.0;  // the first difference is exact
  return {2.0 * h, 2.0 * (low + root * arc_sine_rest(q))};
}

// --- lengths ---------------------------------------------------------------------------------------------------------

// The sum of squares is rounded once and the root once: within 0.86 ulp, 0.91 of
// subnormal numbers, which are rounded once more.
inline double length_of(double x, double y) {
  const Wide a = square(x), b = square(y), s = any_sum(a.high, b.high);
  return std::sqrt(s.high + (s.low + (a.low + b.low)));
}

inline double length_of(double x, double y, double z) {
  const Wide a = square(x), b = square(y), c = square(z), s = any_sum(a.high, b.high), t = any_sum(s.high, c.high);
  return std::sqrt(t.high + ((s.low + t.low) + ((a.low + b.low) + c.low)));
}

inline bool squares_fit(double largest) { return largest >= kSmall && largest <= kLarge; }

double scaled_length(double x, double y, double z, double largest) {
  if (std::abs(x) == kInfinity || std::abs(y) == kInfinity || std::abs(z) == kInfinity) return kInfinity;
  if (std::isnan(x + y + z) || largest == 0.0) return x + y + z;
  const int scale = std::ilogb(largest);
  return std::ldexp(length_of(std::ldexp(x, -scale), std::ldexp(y, -scale), std::ldexp(z, -scale)), scale);
}

// --- logarithms and powers -------------------------------------------------------------------------------------------

// Of a positive finite number, from sides of s = (m - 1) / (m + 1) where m lies between the roots of 1/2 and 2.
Wide logarithm(double x) {
  int exponent;
  double m = std::frexp(x, &exponent);
  if (m < 0.7071067811865476) {
    m *= 2.0;
    --exponent;
  }
  const double below = m + 1.0, n = exponent;
  const Wide s = quotient({m - 1.0, 0.0}, {below, m - (below - 1.0)});
  const double value = s.high + s.low, q = value * value;
  double p = 0.0;
  for (std::size_t i = tables::kLogarithm.size(); i-- > 0;) p = p * q + tables::kLogarithm[i];
  const Wide high = any_sum(n * tables::kLog2[0], 2.0 * s.high);
  return {high.high, high.low + (n * tables::kLog2[1] + (2.0 * s.low + value * q * p))};
}

// e to a power that leads to no infinity.
double exponential(const Wide& x) {
  const double n = std::floor(x.high * tables::kPerLog2 + 0.5);
  const Wide r = any_sum(x.high - n * tables::kLog2[0], x.low - n * tables::kLog2[1]);
  double p = 0.0;
  for (std::size_t i = tables::kExponential.size(); i-- > 0;) p = p * r.high + tables::kExponential[i];
  const Wide linear = sum(1.0, r.high);
  return std::ldexp(linear.high + (linear.low + (linear.high * r.low + r.high * r.high * p)), static_cast<int>(n));
}

}  // namespace

double sin(double angle) { return turn_by(angle).sin[0]; }

double cos(double angle) { return turn_by(angle).cos[0]; }

SinCos sin_cos(double angle) {
  const Turn turn = turn_by(angle);
  return {turn.sin[0], turn.cos[0]};
}

double atan2(double y, double x) {
  const double height = std::abs(y), width = std::abs(x);
  if (std::isnan(x) || std::isnan(y)) return x + y;
  const double smaller = std::min(height, width), larger = std::max(height, width);
  const bool usual = larger <= kLarge && larger >= kSmall && (smaller >= kSmall || smaller == 0.0);
  return std::copysign(usual ? angle_of(height, x) : angle_of_unusual(height, x), y);
}

double asin(double sine) {
  const double height = std::abs(sine);
  if (height <= 0.5) return sine + sine * arc_sine_rest(sine * sine);
  const Wide rest = small_arc_cosine(height);
  return std::copysign(from_eighth(2, -1.0, rest.high, rest.low), sine);
}

double acos(double cosine) {
  const double width = std::abs(cosine);
  if (width <= 0.5) return from_eighth(2, -1.0, cosine, cosine * arc_sine_rest(cosine * cosine));
  const Wide angle = small_arc_cosine(width);
  return cosine > 0.0 ? angle.high + angle.low : from_eighth(4, -1.0, angle.high, angle.low);
}

double hypot(double x, double y) {
  const double largest = std::max(std::abs(x), std::abs(y));
  return squares_fit(largest) ? length_of(x, y) : scaled_length(x, y, 0.0, largest);
}

double hypot(double x, double y, double z) {
  const double largest = std::max({std::abs(x), std::abs(y), std::abs(z)});
  return squares_fit(largest) ? length_of(x, y, z) : scaled_length(x, y, z, largest);
}

double log(double x) {
  if (x == 0.0) return -kInfinity;
  if (!(x > 0.0)) return kNan;
  if (x == kInfinity) return x;
  const Wide value = logarithm(x);
  return value.high + value.low;
}

double pow(double base, double exponent) {
  if (exponent == 0.0) return 1.0;
  if (!(base >= 0.0 && exponent > 0.0 && exponent <= 1.0)) return kNan;
  if (base == 0.0 || base == kInfinity || exponent == 1.0) return std::abs(base);
  const Wide log = logarithm(base), power = product(log.high, exponent);
  return exponential({power.high, power.low + log.low * exponent});
}

}  // namespace vantorelix::base
