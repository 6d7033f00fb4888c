// The clock that benchmarks and the hosts under them read.
#pragma once

#include <chrono>

namespace vantorelix::bench {

// Wall-clock seconds.
inline double now() {
  return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

}  // namespace vantorelix::bench
