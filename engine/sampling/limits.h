// How much memory a mere count may claim.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace vantorelix {

// A trail of more samples than this would claim gigabytes: it ends as an ordinary error of kind overflow instead.
inline constexpr std::int64_t kMaxSamples = std::int64_t{1} << 27;

// Places to reserve for `n` results that are made one by one: all of them, as far as anybody makes so many. A count
// from an absurd range claims no memory before its first result exists.
inline std::size_t reservation(std::int64_t n) {
  constexpr std::int64_t kMax = std::int64_t{1} << 22;
  return static_cast<std::size_t>(std::clamp<std::int64_t>(n, 0, kMax));
}

}  // namespace vantorelix
