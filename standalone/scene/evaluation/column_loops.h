// Rotations and matrix products at many times at once. A matrix (Affine) is twelve columns, one for each of its
// numbers, row by row; place i of every column belongs to time i. The loops are compiled once for each width of
// register, and every width gives the same doubles, since no multiplication is fused with an addition. For the files of
// this folder only.
//
// On a processor with AVX-512 the leaf of a chain of 50 takes 1.6 times as long with the narrowest loops alone and 1.07
// times with those of AVX2; shown by a build that takes another of column_widths().here (loops() in positions.cpp), in
// turns: build/bin/vantorelix_bench --benchmark_filter=chain_leaf
#pragma once

#include <cstddef>

#include "base/instruction_sets.h"

namespace vantorelix::standalone {

// Length of a column, in doubles: the distance from one column to the next, and the most times worked out at once.
inline constexpr std::size_t kColumn = 64;

// `count` is at most kColumn. The output must not overlap any input.
struct ColumnLoops {
  const char* name;
  // The upper rows, nine columns, of the rotations by `angles`: three columns, x, y, z in radians. `order` as
  // Channel::rotateOrder counts. False, and nothing written, when an angle lies beyond base::kSineReach.
  bool (*rotations)(const double* angles, std::size_t count, int order, double* rows);
  // The products a * b (first a, then b, as operator* of Affine), twelve columns each. The columns of `a` are kColumn
  // apart, those of `b` and `out` are `b_stride` and `out_stride` doubles apart.
  void (*products)(const double* a, const double* b, std::size_t b_stride, std::size_t count, double* out,
                   std::size_t out_stride);
};

namespace lanes {
extern const ColumnLoops base, avx2, avx512;
}

inline const Widths<ColumnLoops>& column_widths() { return compiled_widths<lanes::base, lanes::avx2, lanes::avx512>(); }

}  // namespace vantorelix::standalone
