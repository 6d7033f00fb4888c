// The loops of the spacing colours over one block of points, compiled once for each width of register.
//
// Every width gives the same doubles: sums keep their order, divisions stay divisions, nothing is fused.
//
// On a processor with AVX-512 colouring 10,000 points takes 2.1 times as long with the narrowest loops alone and 1.25
// times with those of AVX2, and making a trail of 10,000 frames 1.12 times; shown by a build in which
// _colors_from_positions takes another of lane_widths().here, in turns:
// build/bin/vantorelix_bench --benchmark_filter='colours/10000|one_object/10000'
#pragma once

#include <cstddef>

#include "base/instruction_sets.h"
#include "engine/sampling/spacing_kernel.h"

namespace vantorelix {

// How many points are coloured at a time: few enough for their numbers to stay in the nearest cache.
inline constexpr std::size_t kLaneBlock = 64;

// `count` may be any number, but for `ramp`. Inputs and outputs must not overlap.
struct Lanes {
  const char* name;
  // The lengths of the segments between count + 1 points, x y z x y z ...
  void (*lengths)(const double* xyz, std::size_t count, double* out);
  // out[i] is the mean of the segment lengths i ... i + 2 * kSpacingWindow, for i below `count`; reads count +
  // 2 * kSpacingWindow + 1 points. The means are added to `baseline` unless it is null.
  void (*smoothed)(const double* xyz, std::size_t count, double* out, kernel::Baseline* baseline);
  // Ramp parameters: lengths / scale, clamped to 0..1; all 0 where the scale is not above kernel::kHold.
  void (*parameters)(const double* lengths, std::size_t count, double scale, double* out);
  // The ramp's colour at the mean of t[i] and t[i + 1], both in 0..1, as r g b r g b ... `count` is at most kLaneBlock.
  void (*ramp)(const double* t, std::size_t count, double* rgb);
};

namespace lanes {
extern const Lanes base, avx2, avx512;
}

inline const Widths<Lanes>& lane_widths() { return compiled_widths<lanes::base, lanes::avx2, lanes::avx512>(); }

}  // namespace vantorelix
