// Where an object stands still.
#pragma once

#include <vector>

#include "session/measures/path.h"

namespace vantorelix::session {

// Frames over which an object stands still.
struct Hold {
  double first;
  double last;
};

// The stretches of at least two frames in which each step is under a hundredth of the mean of those that are not; none
// for an object that does not move at all.
std::vector<Hold> holds_of(const Path& path);

}  // namespace vantorelix::session
