// Arguments for the functions of base/mathematics/mathematics.h, every kind that one of them treats in its own way.
// Drawn the same on every system.
#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <random>

#include "base/mathematics/mathematics.h"

namespace vantorelix::support {

class Draw {
 public:
  explicit Draw(std::uint64_t seed) : random_(seed) {}

  // In [0, 1).
  double unit() { return static_cast<double>(random_() >> 11) * 0x1p-53; }
  double within(double most) { return (2.0 * unit() - 1.0) * most; }
  std::int64_t integer(std::int64_t low, std::int64_t high) {
    return low + static_cast<std::int64_t>(random_() % static_cast<std::uint64_t>(high - low + 1));
  }
  double signed_at_random(double x) { return random_() % 2 == 0 ? x : -x; }
  // Of either sign, with an exponent in [low, high].
  double sized(int low, int high) {
    const double mantissa = 1.0 + unit();
    return signed_at_random(std::ldexp(mantissa, static_cast<int>(integer(low, high))));
  }
  // Any finite number, subnormal ones and zeros among them.
  double finite() {
    const double value = std::bit_cast<double>(random_());
    return std::isfinite(value) ? value : 0.0;
  }
  // Up to `steps` doubles away.
  double beside(double x, int steps) {
    return std::bit_cast<double>(std::bit_cast<std::uint64_t>(x) + static_cast<std::uint64_t>(integer(-steps, steps)));
  }

 private:
  std::mt19937_64 random_;
};

using Arguments = std::array<double, 3>;

inline Arguments angle(Draw& draw) {
  switch (draw.integer(0, 3)) {
    case 0:
      return {draw.within(64.0)};
    case 1:
      return {draw.finite()};
    case 2:
      return {draw.sized(-60, 17)};
    default:  // next to a multiple of a quarter turn
      return {draw.beside(std::trunc(draw.sized(0, 52)) * 1.5707963267948966, 2)};
  }
}

inline Arguments side(Draw& draw) {
  switch (draw.integer(0, 3)) {
    case 0:
      return {draw.within(1.0)};
    case 1:
      return {draw.sized(-1074, -1)};
    case 2:
      return {draw.signed_at_random(1.0 - std::abs(draw.sized(-53, -2)))};
    default:
      return {draw.beside(draw.signed_at_random(0.5), 100)};
  }
}

inline Arguments vector(Draw& draw) {
  const double size = draw.sized(-1070, 1020);
  switch (draw.integer(0, 5)) {
    case 0:
      return {draw.within(5.0), draw.within(5.0), draw.within(5.0)};
    case 1:
      return {draw.finite(), draw.finite(), draw.finite()};
    case 2:  // sides of about one size
      return {size * draw.sized(-2, 2), size * draw.sized(-2, 2), size * draw.sized(-2, 2)};
    case 3:
      return {draw.sized(-40, 40), draw.sized(-40, 40), draw.sized(-40, 40)};
    case 4:  // next to a diagonal
      return {draw.beside(size, 3), size, size};
    default:  // next to half a diagonal
      return {draw.beside(0.41421356237309503 * size, 3), draw.beside(-size, 1), draw.beside(size, 1)};
  }
}

inline Arguments power(Draw& draw) {
  const double exponent = draw.integer(0, 3) == 0 ? std::abs(draw.sized(-60, -1)) : draw.unit();
  switch (draw.integer(0, 2)) {
    case 0:
      return {5.0 * draw.unit(), exponent};
    case 1:
      return {std::abs(draw.finite()), exponent};
    default:
      return {1.0 + draw.sized(-52, -2), exponent};
  }
}

inline Arguments positive(Draw& draw) {
  switch (draw.integer(0, 2)) {
    case 0:
      return {5.0 * draw.unit()};
    case 1:
      return {std::abs(draw.finite())};
    default:
      return {1.0 + draw.sized(-52, -2)};
  }
}

struct MathematicsFunction {
  const char* name;
  Arguments (*arguments)(Draw&);
  double (*value)(const Arguments&);
};

inline constexpr std::array<MathematicsFunction, 9> kMathematics = {{
    {"sin", angle, [](const Arguments& a) { return base::sin(a[0]); }},
    {"cos", angle, [](const Arguments& a) { return base::cos(a[0]); }},
    {"asin", side, [](const Arguments& a) { return base::asin(a[0]); }},
    {"acos", side, [](const Arguments& a) { return base::acos(a[0]); }},
    {"atan2", vector, [](const Arguments& a) { return base::atan2(a[0], a[1]); }},
    {"hypot of two", vector, [](const Arguments& a) { return base::hypot(a[0], a[1]); }},
    {"hypot of three", vector, [](const Arguments& a) { return base::hypot(a[0], a[1], a[2]); }},
    {"pow", power, [](const Arguments& a) { return base::pow(a[0], a[1]); }},
    {"log", positive, [](const Arguments& a) { return base::log(a[0]); }},
}};

// Of the bits of `count` values.
inline std::uint64_t hash_of(const MathematicsFunction& function, int count) {
  Draw draw(1);
  std::uint64_t hash = 0;
  for (int i = 0; i < count; ++i)
    hash = (hash ^ std::bit_cast<std::uint64_t>(function.value(function.arguments(draw)))) * 0x9e3779b97f4a7c15 + 1;
  return hash ^ hash >> 32;
}

}  // namespace vantorelix::support
