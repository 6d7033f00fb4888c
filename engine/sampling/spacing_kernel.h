// The arithmetic of spacing over plain arrays, written once for the published functions and for the colouring.
//
// Sums run left to right and divisions are divisions: every road through here gives the same doubles.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace vantorelix::kernel {

// Segments shorter than this are holds, and scales smaller than this no scales.
inline constexpr double kHold = 1e-9;

// out[i] = mean of values[i] ... values[i + 2 * window]: `count` means of full windows. `Window` is an integer, or a
// constant that lets the compiler unroll it.
template <class Window>
void full_means(const double* values, std::size_t count, Window window, double* out) {
  const std::size_t width = 2 * static_cast<std::size_t>(window) + 1;
  const double divisor = static_cast<double>(width);
  for (std::size_t i = 0; i < count; ++i) {
    double sum = 0.0;
    for (std::size_t k = 0; k < width; ++k) sum += values[i + k];
    out[i] = sum / divisor;
  }
}

// Mean of values[lo] ... values[hi - 1].
inline double mean(const double* values, std::size_t lo, std::size_t hi) {
  double sum = 0.0;
  for (std::size_t k = lo; k < hi; ++k) sum += values[k];
  return sum / static_cast<double>(hi - lo);
}

// The smoothed values first ... last - 1 of an array of n, into out[0] ...: full windows inside, what there is of them
// at the ends. `values` points at element `base` and reaches at least `window` elements around the ones wanted.
template <class Window>
void smooth(const double* values, std::size_t base, std::size_t n, Window window, std::size_t first, std::size_t last,
            double* out) {
  const std::size_t w = static_cast<std::size_t>(window);
  const auto short_mean = [&](std::size_t i) {
    return mean(values, (i > w ? i - w : 0) - base, (n - i > w ? i + w + 1 : n) - base);
  };
  const std::size_t inner_end = std::clamp(n > w ? n - w : 0, first, last);
  const std::size_t inner = std::min(std::max(first, w), inner_end);
  for (std::size_t i = first; i < inner; ++i) out[i - first] = short_mean(i);
  if (inner < inner_end) full_means(values + (inner - w - base), inner_end - inner, window, out + (inner - first));
  for (std::size_t i = inner_end; i < last; ++i) out[i - first] = short_mean(i);
}

// Running mean of the lengths that are no holds.
struct Baseline {
  double sum = 0.0;
  std::size_t count = 0;

  void add(const double* lengths, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
      const bool active = lengths[i] > kHold;
      sum += active ? lengths[i] : 0.0;  // adding 0 changes no bit of a sum that is not negative
      count += active ? 1 : 0;
    }
  }
  double mean() const { return count == 0 ? 0.0 : sum / static_cast<double>(count); }
};

// As the scripting language's min and max, which keep the bound where the value is no number.
inline double clamp_unit(double t) {
  const double low = t < 1.0 ? t : 1.0;
  return low > 0.0 ? low : 0.0;
}

// Lengths to ramp parameters; all 0 where there is no scale.
inline void parameters(const double* lengths, std::size_t count, double scale, double* out) {
  if (scale <= kHold) {
    std::fill_n(out, count, 0.0);
  } else {
    for (std::size_t i = 0; i < count; ++i) out[i] = clamp_unit(lengths[i] / scale);
  }
}

}  // namespace vantorelix::kernel
