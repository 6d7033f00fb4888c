// The clock that benchmarks are timed with.
#pragma once

#include <chrono>

namespace vantorelix::bench {

// Seconds.
inline double now() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

}  // namespace vantorelix::bench
