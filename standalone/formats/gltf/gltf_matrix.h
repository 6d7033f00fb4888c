// A node's matrix taken apart into the channels of a transform.
#pragma once

#include <array>

#include "standalone/scene/scene.h"

namespace vantorelix::standalone {

// Sets translation, rotation, scale and shear so that the node's local matrix is `matrix` (16 numbers, row vectors: the
// translation are the 12th to 14th), to about 1e-15 of its largest number. A matrix that has no such channels, because
// it flattens space, becomes the node's offset parent matrix instead: the node stands where the matrix puts it all the
// same.
void place_by_matrix(Scene& scene, NodeId node, const std::array<double, 16>& matrix);

}  // namespace vantorelix::standalone
