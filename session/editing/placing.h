// A place in the world back to an object's own channels.
#pragma once

#include "base/vector.h"
#include "session/editing/obstacle.h"
#include "standalone/scene/scene.h"

namespace vantorelix::session {

// Throws CannotPlace where no place that is wanted for the transform at this frame can be had.
void require_placeable(const standalone::Scene& scene, standalone::NodeId object, double frame);

// Sets the keys of the object's translation at this frame so that its world translation is `wanted` then, to 1e-9 of
// how far from the origin it, the place, and what is above it are. Parents, pivots, offset parent matrices and all else
// stay as they are. Where a channel that has to change has no key at this frame, it gets one that keeps the rest of its
// curve as an inserted key does (standalone/scene/curves/key_insertion.h); a channel without a curve gets one, with
// keys of its value where the neighbouring keys of the other channels are. Throws CannotPlace; the scene is as it was
// then.
void place(standalone::Scene& scene, standalone::NodeId object, double frame, const Vector& wanted);

}  // namespace vantorelix::session
