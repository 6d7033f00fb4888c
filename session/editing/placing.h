// A place in the world back to an object's own channels.
#pragma once

#include <string>

#include "base/vector.h"
#include "session/failure.h"
#include "standalone/scene/scene.h"

namespace vantorelix::session {

// Why keys of an object's own translation cannot put it where one wants it.
enum class Obstacle {
  no_key,          // no channel of its translation has a key at that time
  rotations_only,  // only its rotation has
  locked,          // a channel that would have to change is locked
  not_a_curve,     // something else than a curve of its own drives a channel that would have to change
  recorded,        // its translation is a track: three values at once, which have no keys to edit
  flat_parent,     // what is above it scales an axis to nothing, so that its own channels do not reach every place
  not_finite,      // it is nowhere, or the wanted place is
  repeats,         // a key that it would need would lie beyond the ends of a curve that repeats there
  depends,         // its other channels, or its parents', hang on its translation
};

// A word for each, as "no_key".
const char* word_of(Obstacle obstacle);

struct CannotPlace : Failure {
  // The text is one sentence without its end.
  CannotPlace(Obstacle what, const std::string& text) : Failure(Kind::cannot_place, text), obstacle(what) {}

  Obstacle obstacle;
};

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
