// Why an object's own keys do not do what one wants of them.
#pragma once

#include <string>

#include "session/failure.h"

namespace vantorelix::session {

enum class Obstacle {
  no_key,          // no channel of its translation has a key at that time
  rotations_only,  // only its rotation has
  locked,          // a channel that would have to change is locked
  not_a_curve,     // something else than a curve of its own drives a channel that would have to change
  recorded,        // its translation is a track: three values at once, which have no keys to edit
  flat_parent,     // what is above it scales an axis to nothing, so that its own channels do not reach every place
  not_finite,      // it is nowhere, or what is wanted is no number
  repeats,         // a key that it would need would lie beyond the ends of a curve that repeats there
  depends,         // its other channels, or its parents', hang on its translation
  // Of sliding alone:
  at_key,          // a key of its translation is at that time
  still,           // its own translation does not move it then
  beyond_keys,     // it moves before or after all keys of a channel
  steps,           // a channel steps there
  weights_differ,  // time does not pass alike in its channels there
};

// A word for each, as "no_key".
const char* word_of(Obstacle obstacle);

struct CannotPlace : Failure {
  // The text is one sentence without its end.
  CannotPlace(Obstacle what, const std::string& text) : Failure(Kind::cannot_place, text), obstacle(what) {}

  Obstacle obstacle;
};

}  // namespace vantorelix::session
