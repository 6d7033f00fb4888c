// What is different between two versions of a motion.
#pragma once

#include <vector>

#include "session/measures/measures.h"

namespace vantorelix::session {

struct MeasureChange {
  const MeasureField* field;
  double before, after;  // not a number where it is not known
  // From 0: of shares |after - before|, of others |after - before| / max(|before|, |after|). 1 where only one is known.
  double change;
};

// The measures that changed, the largest change first. Frames are left out: a frame is a place and has no size.
std::vector<MeasureChange> changes_of(const Measures& before, const Measures& after);

}  // namespace vantorelix::session
