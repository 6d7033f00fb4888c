// How steeply a curve leaves and enters its keys. For the files of this folder only.
#pragma once

#include "standalone/scene/curves/curve_key.h"
#include "standalone/scene/curves/weighted_segment.h"

namespace vantorelix::standalone {

// A key between its neighbours, which are null at the ends of the curve.
struct KeyPlace {
  const Key* previous;
  const Key& key;
  const Key* next;
};

// Slopes in value units a frame. Not finite when the values' differences overflow.
double in_slope(const KeyPlace& place, double frames_per_second);
double out_slope(const KeyPlace& place, double frames_per_second);

// Weighted tangents. The in side needs a previous key, the out side a next one: what is not fixed by the key reaches
// as far as that neighbour.
TangentVector in_vector(const KeyPlace& place, double frames_per_second);
TangentVector out_vector(const KeyPlace& place, double frames_per_second);

}  // namespace vantorelix::standalone
