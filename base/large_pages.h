// Large pages under large arrays: a million samples come page by page otherwise, and each page costs an interrupt.
// Without the advice, colouring a million points takes 1.05 times as long at its fastest and 1.26 times at the median
// (build/bin/vantorelix_bench --benchmark_filter=colours/1000000, 21 times in turns); arrays below some 350,000 samples
// gain nothing.
#pragma once

#include <cstddef>
#include <vector>

namespace vantorelix {

// Advises the system to back these bytes, which are reserved but not written yet, with large pages. Without effect on a
// system that takes no such advice, and on arrays that would not fill a few of them.
void advise_large_pages(void* begin, std::size_t bytes) noexcept;

template <class T>
void reserve(std::vector<T>& values, std::size_t count) {
  values.reserve(count);
  advise_large_pages(values.data(), values.capacity() * sizeof(T));
}

}  // namespace vantorelix
