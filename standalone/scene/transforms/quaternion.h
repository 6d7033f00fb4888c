// Unit quaternions, and the Euler angles that channels hold instead.
#pragma once

#include <array>

#include "standalone/scene/transforms/rotation.h"

namespace vantorelix::standalone {

using Angles = std::array<double, 3>;      // radians about x, y, z
using Quaternion = std::array<double, 4>;  // x, y, z, w

// `order` is that of Channel::rotateOrder; what is not an order counts as xyz.
Quaternion quaternion_of(const Angles& angles, double order);
// Of a unit quaternion.
Basis basis_of(const Quaternion& q);
// Of a rotation matrix. Turned back into a matrix they give the same one to about 1e-15, gimbal lock and its
// neighbourhood included. In the lock itself the last turn is 0.
Angles angles_of(const Basis& rotation, double order);

double dot(const Quaternion& a, const Quaternion& b);
// False, and `q` untouched, for a length that is 0 or not finite.
bool normalise(Quaternion& q);
// The shorter way round from `a` (weight 0) to `b` (weight 1), at constant speed; both of unit length.
Quaternion slerp(const Quaternion& a, const Quaternion& b, double weight);

}  // namespace vantorelix::standalone
