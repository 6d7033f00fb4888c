// The spectrum of a signal with zeros after it.
#pragma once

#include <cstddef>
#include <vector>

namespace vantorelix::session {

// Zeros make the signal this many times as long as the least power of two that holds it.
inline constexpr std::size_t kPadding = 16;

// The magnitudes |X[k]| of the discrete Fourier transform of `values` and those zeros, N numbers in all:
//
//   X[k] = sum over n of values[n] exp(-2 pi i k n / N),  k = 0 .. N / 2
//
// `values` is not empty. Worked out as transforms of the unpadded length, which needs a sixteenth of the memory.
std::vector<double> padded_spectrum(const std::vector<double>& values);

}  // namespace vantorelix::session
