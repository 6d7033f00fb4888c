// Where a frame beyond the keys lies within them, for curves that repeat. For the files of this folder only.
#pragma once

#include "standalone/scene/curves/curve_key.h"

namespace vantorelix::standalone {

struct Repetition {
  double frame;   // from first to last
  double number;  // 0 is the curve itself, 1 its first repetition, -1 the one before it
};

// For `infinity` cycle, cycle_offset or oscillate, and `frame` outside first..last (first < last). A frame on the seam
// of two repetitions belongs to the one farther from the keys. Any distance costs the same.
Repetition repetition(double frame, double first, double last, Infinity infinity);

}  // namespace vantorelix::standalone
