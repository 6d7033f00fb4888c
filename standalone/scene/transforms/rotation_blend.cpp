#include "standalone/scene/transforms/rotation_blend.h"

namespace vantorelix::standalone {

Angles blend_rotations(const Angles& a, const Angles& b, double weight, double order) {
  if (weight == 0.0) return a;
  if (weight == 1.0) return b;
  return angles_of(basis_of(slerp(quaternion_of(a, order), quaternion_of(b, order), weight)), order);
}

}  // namespace vantorelix::standalone
