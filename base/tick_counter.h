// The processor's counter: the only code here that knows processors and compilers.
#pragma once

#include <cstdint>

#if defined(_MSC_VER) && defined(_M_X64)
#include <intrin.h>
#elif defined(__GNUC__) && defined(__x86_64__)
#include <x86intrin.h>
#else
#include <chrono>
#endif

namespace vantorelix {

#if (defined(_MSC_VER) && defined(_M_X64)) || (defined(__GNUC__) && defined(__x86_64__))
inline constexpr bool kHasTickCounter = true;
#else
inline constexpr bool kHasTickCounter = false;  // read_ticks is a clock, which costs what clocks cost
#endif

// Ticks of a counter that costs less to read than any clock, where there is one. Nothing is promised: the rate is
// unknown and may change, and after a machine slept the count may be anything.
inline std::uint64_t read_ticks() {
#if (defined(_MSC_VER) && defined(_M_X64)) || (defined(__GNUC__) && defined(__x86_64__))
  return __rdtsc();
#else
  return static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
#endif
}

}  // namespace vantorelix
