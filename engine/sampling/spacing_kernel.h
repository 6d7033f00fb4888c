// The arithmetic of spacing over plain arrays, written once for the published functions and for the colouring.
//
// Sums run from left to right, and no division is replaced by a multiplication, so that every caller gets the same
// doubles. All functions are static, not inline: each source that includes this gets its own copies, compiled with its
// own flags. Inline ones would be merged by the linker into one copy, perhaps one for a processor that is not there.
//
// A `Count` is a std::size_t, or a constant of it (std::integral_constant) that lets the compiler unroll a loop.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace vantorelix::kernel {

// Neighbours on each side that the spacing colours average over.
using SpacingWindow = std::integral_constant<std::int64_t, 3>;

// Segments up to this length count as standing still ("holds") and are left out of the baseline; a scale up to this
// length counts as none.
inline constexpr double kHold = 1e-9;

// out[i] = mean of values[i] ... values[i + 2 * window]: `count` means of full windows.
template <class Window, class Count>
static void full_means(const double* values, Count count, Window window, double* out) {
  const std::size_t width = 2 * static_cast<std::size_t>(window) + 1;
  const double divisor = static_cast<double>(width);
  for (std::size_t i = 0; i < count; ++i) {
    double sum = 0.0;
    for (std::size_t k = 0; k < width; ++k) sum += values[i + k];
    out[i] = sum / divisor;
  }
}

// Smooths elements first ... last - 1 of an array of n elements into out[0 .. last - first): each becomes the mean of
// its window, of which less is left near an end of the array. `values` points at element `base` of the array, and must
// reach `window` elements to both sides of those wanted, as far as the array goes.
template <class Window>
static void smooth(const double* values, std::size_t base, std::size_t n, Window window, std::size_t first,
                   std::size_t last, double* out) {
  const std::size_t w = static_cast<std::size_t>(window);
  const auto short_mean = [&](std::size_t i) {
    const std::size_t lo = i > w ? i - w : 0, hi = n - i > w ? i + w + 1 : n;
    double sum = 0.0;
    for (std::size_t k = lo; k < hi; ++k) sum += values[k - base];
    return sum / static_cast<double>(hi - lo);
  };
  const std::size_t inner_end = std::clamp(n > w ? n - w : 0, first, last);
  const std::size_t inner = std::min(std::max(first, w), inner_end);
  for (std::size_t i = first; i < inner; ++i) out[i - first] = short_mean(i);
  if (inner < inner_end) full_means(values + (inner - w - base), inner_end - inner, window, out + (inner - first));
  for (std::size_t i = inner_end; i < last; ++i) out[i - first] = short_mean(i);
}

// The sum and number of the lengths above kHold that were added so far.
struct Baseline {
  double sum = 0.0;
  std::size_t count = 0;

  double mean() const { return count == 0 ? 0.0 : sum / static_cast<double>(count); }
};

// How many lengths are added to a baseline at a time. What to add of each is decided first, several at once in wide
// registers; only the sum then has to run in order.
inline constexpr std::size_t kBaselineStep = 32;

// Up to kBaselineStep lengths.
template <class Count>
static void add(Baseline& baseline, const double* lengths, Count count) {
  alignas(64) double added[kBaselineStep];
  std::size_t active = 0;
  for (std::size_t i = 0; i < count; ++i) {
    added[i] = lengths[i] > kHold ? lengths[i] : 0.0;  // adding 0 changes no bit of a sum that is not negative
    active += lengths[i] > kHold ? 1 : 0;
  }
  double sum = baseline.sum;
  for (std::size_t i = 0; i < count; ++i) sum += added[i];
  baseline.sum = sum;
  baseline.count += active;
}

// Clamps to 0..1. A value that is not a number becomes 1, as with max(0.0, min(1.0, t)) in Python.
static inline double clamp_unit(double t) {
  const double low = t < 1.0 ? t : 1.0;
  return low > 0.0 ? low : 0.0;
}

// Ramp parameters of lengths: length / scale, clamped to 0..1; all 0 where the scale is not above kHold.
template <class Count>
static void parameters(const double* lengths, Count count, double scale, double* out) {
  if (scale <= kHold) {
    for (std::size_t i = 0; i < count; ++i) out[i] = 0.0;
  } else {
    for (std::size_t i = 0; i < count; ++i) out[i] = clamp_unit(lengths[i] / scale);
  }
}

}  // namespace vantorelix::kernel
