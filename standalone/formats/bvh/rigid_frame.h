// A place and a rotation in the world, without what else a matrix holds. For the files of this folder only.
#pragma once

#include "base/matrix.h"
#include "standalone/scene/transforms/rotation.h"

namespace vantorelix::standalone {

struct RigidFrame {
  Basis rotation = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
  Vector place;
  // Whether the matrix was nothing but this, to 1e-9.
  bool is_whole = true;
};

// Along the matrix's first axis, and as near as can be to its second; of a matrix that flattens them, not turned at
// all.
RigidFrame rigid_frame_of(const Affine& matrix);

// As a child of the other one.
RigidFrame relative_to(const RigidFrame& parent, const RigidFrame& child);

}  // namespace vantorelix::standalone
