// Decimal text to double, exactly rounded and fast for the short numbers that scene files are made of.
//
// With parse_number_slow alone a BVH clip from file to finished trails takes 1.2 times the instructions; shown by
// valgrind --tool=callgrind build/bin/vantorelix trails clip.bvh --quiet (clip.bvh: build/bin/vantorelix_bench_clip)
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace vantorelix {

// The slow way, for what the fast one does not take: many digits, large exponents, "inf" and "nan". As parse_number.
const char* parse_number_slow(const char* first, const char* last, double& value);

// Reads a number at the start of [first, last): an optional sign, digits with an optional point, an optional exponent.
// Returns where it ends, or `first` where no number starts. Beyond the range of a double the value is an infinity or
// a zero; "inf" and "nan" in any case are numbers too, so that the caller can name them as not finite.
inline const char* parse_number(const char* first, const char* last, double& value) {
  static constexpr std::array<double, 23> kPower = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                    1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                    1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  const char* p = first;
  const bool negative = p != last && *p == '-';
  if (p != last && (*p == '-' || *p == '+')) ++p;
  std::uint64_t mantissa = 0;
  const char* const digits = p;
  while (p != last && *p >= '0' && *p <= '9') mantissa = mantissa * 10 + static_cast<std::uint64_t>(*p++ - '0');
  auto count = p - digits;
  std::ptrdiff_t fraction = 0;
  if (p != last && *p == '.') {
    const char* const point = ++p;
    while (p != last && *p >= '0' && *p <= '9') mantissa = mantissa * 10 + static_cast<std::uint64_t>(*p++ - '0');
    fraction = p - point;
    count += fraction;
  }
  std::ptrdiff_t power = -fraction;
  if (count != 0 && p != last && (*p == 'e' || *p == 'E')) {
    const char* q = p + 1;
    const bool down = q != last && *q == '-';
    if (q != last && (*q == '-' || *q == '+')) ++q;
    const char* const start = q;
    std::ptrdiff_t exponent = 0;
    while (q != last && *q >= '0' && *q <= '9' && exponent < 10000) exponent = exponent * 10 + (*q++ - '0');
    // An "e" without digits is not an exponent; the number ends before it.
    if (q != start) {
      power += down ? -exponent : exponent;
      p = q;
    }
  }
  // With at most 19 digits the mantissa has not wrapped; below 2^53 it is exact, and so are the powers to 1e22:
  // one multiplication or division rounds once.
  if (count == 0 || count > 19 || mantissa > (std::uint64_t{1} << 53) || power < -22 || power > 22) {
    return parse_number_slow(first, last, value);
  }
  const double exact = static_cast<double>(mantissa);
  const double magnitude =
      power < 0 ? exact / kPower[static_cast<std::size_t>(-power)] : exact * kPower[static_cast<std::size_t>(power)];
  value = negative ? -magnitude : magnitude;
  return p;
}

}  // namespace vantorelix
