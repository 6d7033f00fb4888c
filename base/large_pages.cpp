#include "base/large_pages.h"

#include <cstdint>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace vantorelix {

void advise_large_pages([[maybe_unused]] void* begin, [[maybe_unused]] std::size_t bytes) noexcept {
#ifdef __linux__
  constexpr std::uintptr_t kLargePage = std::uintptr_t{1} << 21;
  if (bytes < 4 * kLargePage) return;
  // The whole pages within: what lies before and after may be somebody else's.
  const auto address = reinterpret_cast<std::uintptr_t>(begin);
  const std::size_t before = (kLargePage - address % kLargePage) % kLargePage;
  const std::size_t covered = (bytes - before) / kLargePage * kLargePage;
  madvise(static_cast<char*>(begin) + before, covered, MADV_HUGEPAGE);  // advice: a refusal changes nothing
#endif
}

}  // namespace vantorelix
