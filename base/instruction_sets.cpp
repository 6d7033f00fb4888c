#include "base/instruction_sets.h"

#if defined(_MSC_VER) && defined(_M_X64)
#include <intrin.h>
#elif defined(__x86_64__)
#include <cpuid.h>
#endif

#include <cstdint>
#include <initializer_list>

namespace vantorelix {
namespace {

#if defined(__x86_64__) || defined(_M_X64)

// Leaf of the processor's description: eax, ebx, ecx, edx; 0 where it has none.
struct Leaf {
  std::uint32_t a = 0, b = 0, c = 0, d = 0;
};

Leaf leaf(std::uint32_t number) {
  Leaf found;
#ifdef _MSC_VER
  int leaves[4], words[4];
  __cpuid(leaves, 0);
  if (number > static_cast<std::uint32_t>(leaves[0])) return found;
  __cpuidex(words, static_cast<int>(number), 0);
  found = {static_cast<std::uint32_t>(words[0]), static_cast<std::uint32_t>(words[1]),
           static_cast<std::uint32_t>(words[2]), static_cast<std::uint32_t>(words[3])};
#else
  __get_cpuid_count(number, 0, &found.a, &found.b, &found.c, &found.d);
#endif
  return found;
}

// The registers that the operating system keeps when it switches threads.
std::uint32_t kept_registers() {
#ifdef _MSC_VER
  return static_cast<std::uint32_t>(_xgetbv(0));
#else
  std::uint32_t low, high;
  __asm__("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
  return low;
#endif
}

bool all(std::uint32_t word, std::uint32_t bits) { return (word & bits) == bits; }

constexpr std::uint32_t bits(std::initializer_list<int> places) {
  std::uint32_t word = 0;
  for (const int place : places) word |= std::uint32_t{1} << place;
  return word;
}

Processor look() {
  Processor processor;
  if (!all(leaf(1).c, bits({27, 28}))) return processor;  // the system tells its registers; AVX
  const std::uint32_t kept = kept_registers();
  const std::uint32_t has = leaf(7).b;
  processor.avx2 = all(kept, bits({1, 2})) && all(has, bits({5}));
  processor.avx512 = processor.avx2 && all(kept, bits({5, 6, 7})) && all(has, bits({16, 17, 31}));
  return processor;
}

#else

Processor look() { return {}; }

#endif

}  // namespace

const Processor& this_processor() {
  static const Processor kProcessor = look();
  return kProcessor;
}

}  // namespace vantorelix
