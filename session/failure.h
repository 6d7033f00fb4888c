// What a session cannot do.
#pragma once

#include <stdexcept>
#include <string>

namespace vantorelix::session {

// The text says what is wrong. What to do about it depends on what its reader can do, so whoever shows it adds that.
struct Failure : std::runtime_error {
  enum class Kind {
    range_too_short,   // holds fewer than two samples
    too_many_samples,  // more than memory holds
    no_trail,          // the engine made none, or warned
    no_such_key,
    cannot_place,  // see editing/placing.h
    // Of choosing objects:
    bad_pattern,       // not a valid one
    no_match,          // a pattern that matches no object
    no_object,         // the scene has none
    nothing_animated,  // nor anything chosen by name
    nothing_followed,  // what is animated is driven by what cannot be followed
    all_excluded,
  };

  Failure(Kind what_kind, const std::string& text) : std::runtime_error(text), kind(what_kind) {}

  Kind kind;
};

}  // namespace vantorelix::session
