// Limits on the memory that a number alone may claim, before any result exists.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "host/error.h"

namespace vantorelix {

// The most samples that one trail, or one array of colours, may have: 128 Mi, which are 3 GiB of positions.
inline constexpr std::int64_t kMaxSamples = std::int64_t{1} << 27;

// What to throw for more of them: an ordinary error of kind overflow, instead of running out of memory.
inline host::Error too_many_samples() {
  return host::Error("more than " + std::to_string(kMaxSamples) +
                         " samples; shorten the playback range or lower the samples per frame",
                     host::ErrorKind::overflow);
}

// How many elements to reserve for `n` results that are made one after another: all of them, but at most 4 Mi (96 MiB
// of positions), and none for a negative `n`. From there on the vector grows as it is filled, so that an absurd range
// claims memory only for the results that are really made before somebody stops it.
inline std::size_t reservation(std::int64_t n) {
  constexpr std::int64_t kMax = std::int64_t{1} << 22;
  return static_cast<std::size_t>(std::clamp<std::int64_t>(n, 0, kMax));
}

}  // namespace vantorelix
