// The times at which a trail is sampled.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vantorelix {

// `count` times in frames from `start` on, `step` apart. Each is counted from the start, never from the one before it.
struct SampleTimes {
  double start = 0.0;
  double step = 1.0;
  std::int64_t count = 0;  // none when zero or negative

  std::size_t size() const { return count > 0 ? static_cast<std::size_t>(count) : 0; }
  double operator[](std::size_t i) const { return start + static_cast<double>(i) * step; }
};

}  // namespace vantorelix
