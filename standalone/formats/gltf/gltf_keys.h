// Curves as glTF has them: three that share their key times, in 32 bits. For the files of this folder only.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "standalone/scene/curves/anim_curve.h"
#include "standalone/scene/transforms/quaternion.h"

namespace vantorelix::standalone {

struct GltfKeys {
  std::string interpolation;  // "STEP", "LINEAR" or "CUBICSPLINE"
  std::vector<float> times;   // seconds, strictly ascending, not below 0; at least one
  std::vector<float> values;  // as many as a key has for each; of a spline three times that: in tangent, value, out
};

// What the keys do not hold of the curves.
struct GltfKeyLosses {
  bool rounded = false;       // numbers that 32 bits do not hold
  bool before_start = false;  // keys before time 0; what they lead to from there on is kept
  bool goes_on = false;       // what is before the first key or after the last one
  bool divided = false;       // weighted or repeated curves: straight from frame to frame
  bool dropped = false;       // keys so close that they are one in 32 bits
};

// One of the three that something moves, or that stands.
struct GltfAxis {
  const AnimCurve* curve;  // null: it stands
  double value;            // where
};

// Throws CannotWrite for numbers beyond 32 bits.
GltfKeys gltf_keys_of(const std::array<GltfAxis, 3>& axes, double frames_per_second, GltfKeyLosses& losses);

// Rotations at these frames, ascending; in between the shorter way at constant speed. Throws CannotWrite.
GltfKeys gltf_keys_of(const std::vector<double>& frames, const std::vector<Quaternion>& rotations,
                      double frames_per_second, GltfKeyLosses& losses);

}  // namespace vantorelix::standalone
