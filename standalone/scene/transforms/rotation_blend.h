// The rotation between two others, by quaternions. For the files of standalone/scene only.
#pragma once

#include "standalone/scene/transforms/quaternion.h"

namespace vantorelix::standalone {

// Angles in radians in the given rotate order; the shorter way round. Weight 0 is `a`, 1 is `b`.
Angles blend_rotations(const Angles& a, const Angles& b, double weight, double order);

}  // namespace vantorelix::standalone
