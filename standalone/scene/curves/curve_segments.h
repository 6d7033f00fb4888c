// The pieces that a curve is evaluated from, one between each two keys. For the files of this folder only.
#pragma once

#include <limits>
#include <span>
#include <vector>

#include "standalone/scene/curves/curve_key.h"
#include "standalone/scene/curves/weighted_segment.h"

namespace vantorelix::standalone {

// How far a cubic in the frames since its start has risen; it ends where its successor starts. Of a segment that a
// cubic cannot tell, c3 is not a number: then neither is rise().
struct CurveSegment {
  double start;
  double c1 = 0.0, c2 = 0.0, c3 = 0.0;

  double rise(double frame) const { return rise_after(frame - start); }
  double rise_after(double t) const { return ((c3 * t + c2) * t + c1) * t; }
  bool is_cubic() const { return c3 == c3; }
  void set_not_cubic() { c3 = std::numeric_limits<double>::quiet_NaN(); }
};

struct CurveSegments {
  // In order of time, without gaps: each starts at a key (or just after one that steps to the next value). The last
  // but one starts at the last key, constant at its value; the last starts at infinity. Empty without keys.
  std::vector<CurveSegment> segments;
  // Beside `segments`, what each rises from. On their own because a motion with a key at every frame needs no more.
  std::vector<double> values;
  // Empty, or as long as `segments`, with the truth about those that are not cubic.
  std::vector<WeightedSegment> weighted;
};

// `keys` strictly ascending in time, all numbers finite. Whatever the keys are, each cubic's coefficients are finite:
// where a slope overflows, the segment is a line, and where even that does, it holds its first key's value.
CurveSegments build_segments(std::span<const Key> keys, bool weighted, double frames_per_second);

}  // namespace vantorelix::standalone
