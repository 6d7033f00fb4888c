// Compiled once for each width of register: cmake/lanes.cmake passes the flags of that width, and the name of the
// table at the end as VANTORELIX_LANES.
//
// Every other function here must be local to this file. The linker keeps one copy of an inline function for the whole
// program, and that copy could use instructions which only some processors have. So templates from headers are
// instantiated with types of this file (Turns, Rows), and no other function of a header is called.
#include "standalone/scene/evaluation/column_loops.h"

#include <cstddef>

#include "standalone/scene/transforms/rotation.h"

#ifndef VANTORELIX_LANES
#define VANTORELIX_LANES base
#endif

namespace vantorelix::standalone::lanes {

namespace {

struct Turns {
  double sin[3], cos[3];
};

struct Rows {
  double at[3][3];
  double* operator[](std::size_t i) { return at[i]; }
};

// Whether base::set_sin_cos takes all three columns of angles. Counted without a branch, so that it is vectorised.
bool within_reach(const double* angles, std::size_t count) {
  std::ptrdiff_t beyond = 0;
  for (std::size_t c = 0; c < 3; ++c)
    for (std::size_t i = 0; i < count; ++i) {
      const double angle = angles[c * kColumn + i];
      beyond += angle <= base::kSineReach && angle >= -base::kSineReach ? 0 : 1;
    }
  return beyond == 0;
}

template <std::size_t I, std::size_t J, std::size_t K>
void turn(const double* __restrict angles, std::size_t count, double* __restrict rows) {
  for (std::size_t i = 0; i < count; ++i) {
    Turns t;
    for (std::size_t c = 0; c < 3; ++c) base::set_sin_cos(t, c, angles[c * kColumn + i]);
    Rows b;
    set_rotation_in_order<I, J, K>(b, t);
    for (std::size_t j = 0; j < 9; ++j) rows[j * kColumn + i] = b.at[j / 3][j % 3];
  }
}

bool rotations(const double* angles, std::size_t count, int order, double* rows) {
  if (!within_reach(angles, count)) return false;
  in_order(order, [=]<std::size_t I, std::size_t J, std::size_t K>() { turn<I, J, K>(angles, count, rows); });
  return true;
}

void products(const double* __restrict a, const double* __restrict b, std::size_t b_stride, std::size_t count,
              double* __restrict out, std::size_t out_stride) {
  for (std::size_t j = 0; j < 12; ++j) {
    const double* const x = a + (j - j % 3) * kColumn;
    const double* const y = b + j % 3 * b_stride;
    double* const made = out + j * out_stride;
    for (std::size_t i = 0; i < count; ++i)
      made[i] = x[i] * y[i] + x[kColumn + i] * y[3 * b_stride + i] + x[2 * kColumn + i] * y[6 * b_stride + i];
    if (j < 9) continue;
    for (std::size_t i = 0; i < count; ++i) made[i] += y[9 * b_stride + i];
  }
}

}  // namespace

extern const ColumnLoops VANTORELIX_LANES;
#define VANTORELIX_TEXT_OF(x) #x
#define VANTORELIX_TEXT(x) VANTORELIX_TEXT_OF(x)
const ColumnLoops VANTORELIX_LANES = {VANTORELIX_TEXT(VANTORELIX_LANES), rotations, products};

}  // namespace vantorelix::standalone::lanes
