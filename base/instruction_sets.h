// Loops that are compiled once for each width of register, and which of them this processor runs.
#pragma once

#include <type_traits>
#include <vector>

namespace vantorelix {

// Whether this program has the loops of the wider registers at all.
#ifdef VANTORELIX_WIDE_LANES
inline constexpr bool kWideLanes = true;
#else
inline constexpr bool kWideLanes = false;
#endif

// What the processor has and the operating system lets programs use.
struct Processor {
  bool avx2 = false;
  bool avx512 = false;  // F, DQ and VL
};
const Processor& this_processor();

// The tables of loops (`Loops`, which has a member `name`) that this processor can run, and the names of the others.
template <class Loops>
struct Widths {
  std::vector<const Loops*> here;  // narrowest first; the first runs everywhere
  std::vector<const char*> elsewhere;

  explicit Widths(const Loops& base) : here{&base} {}
  Widths(const Loops& base, const Loops& avx2, const Loops& avx512) : Widths(base) {
    add(avx2, this_processor().avx2);
    add(avx512, this_processor().avx512);
  }

 private:
  void add(const Loops& loops, bool runs) { runs ? here.push_back(&loops) : elsewhere.push_back(loops.name); }
};

// The widths of loops that are compiled once for each; without kWideLanes only `base` need be defined.
template <const auto& base, const auto& avx2, const auto& avx512>
const auto& compiled_widths() {
  using Loops = std::remove_cvref_t<decltype(base)>;
  static const Widths<Loops> kWidths = [] {
    if constexpr (kWideLanes)
      return Widths<Loops>(base, avx2, avx512);
    else
      return Widths<Loops>(base);
  }();
  return kWidths;
}

}  // namespace vantorelix
