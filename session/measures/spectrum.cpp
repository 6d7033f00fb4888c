#include "session/measures/spectrum.h"

#include <bit>
#include <numbers>
#include <utility>

#include "base/mathematics/mathematics.h"

namespace vantorelix::session {

namespace {

struct Complex {
  double re, im;
};
using Signal = std::vector<Complex>;

Complex operator*(const Complex& a, const Complex& b) { return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re}; }

// exp(-2 pi i k / turn) for k below `count`, a power of two: each the product of few that are exact to the last place.
Signal turns(std::size_t count, std::size_t turn) {
  Signal result(count, {1.0, 0.0});
  for (std::size_t half = 1; half < count; half *= 2) {
    const auto [sin, cos] =
        base::sin_cos(-2.0 * std::numbers::pi * (static_cast<double>(half) / static_cast<double>(turn)));
    for (std::size_t k = 0; k < half; ++k) result[half + k] = result[k] * Complex{cos, sin};
  }
  return result;
}

// Puts the sample of each number where the number with its binary digits reversed has its own.
void reverse_digits(Signal& signal) {
  for (std::size_t i = 1, j = 0; i < signal.size(); ++i) {
    std::size_t digit = signal.size() / 2;
    for (; (j & digit) != 0; digit /= 2) j ^= digit;
    j ^= digit;
    if (i < j) std::swap(signal[i], signal[j]);
  }
}

// In place, of a length that is a power of two: Cooley and Tukey ("An algorithm for the machine calculation of complex
// Fourier series", 1965). `roots` are half a turn in steps of 1 / length.
void transform(Signal& signal, const Signal& roots) {
  reverse_digits(signal);
  for (std::size_t half = 1; half < signal.size(); half *= 2) {
    const std::size_t stride = signal.size() / (2 * half);
    for (std::size_t start = 0; start < signal.size(); start += 2 * half)
      for (std::size_t k = 0; k < half; ++k) {
        Complex &a = signal[start + k], &b = signal[start + half + k];
        const Complex turned = b * roots[k * stride];
        b = {a.re - turned.re, a.im - turned.im};
        a = {a.re + turned.re, a.im + turned.im};
      }
  }
}

}  // namespace

// With k = kPadding q + r, X[k] is the transform at q of the samples turned by r steps each. X[N - k] is the conjugate
// of X[k], so r beyond kPadding / 2 gives nothing new.
std::vector<double> padded_spectrum(const std::vector<double>& values) {
  const std::size_t length = std::bit_ceil(values.size()), all = kPadding * length;
  const Signal roots = turns(std::bit_ceil(length / 2), length), turn = turns(length, all);
  Signal turned(length, {0.0, 0.0});
  for (std::size_t n = 0; n < values.size(); ++n) turned[n].re = values[n];
  std::vector<double> magnitudes(all / 2 + 1);
  for (std::size_t r = 0; r <= kPadding / 2; ++r) {
    Signal signal = turned;
    transform(signal, roots);
    for (std::size_t q = 0; q < length; ++q) {
      const std::size_t k = kPadding * q + r;
      magnitudes[k <= all / 2 ? k : all - k] = base::hypot(signal[q].re, signal[q].im);
    }
    for (std::size_t n = 0; n < values.size(); ++n) turned[n] = turned[n] * turn[n];
  }
  return magnitudes;
}

}  // namespace vantorelix::session
