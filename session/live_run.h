// Replaying edits against the real clock, and what that cost.
#pragma once

#include <cstdint>
#include <vector>

#include "session/edits.h"
#include "session/session.h"

namespace vantorelix::session {

// Seconds. A step is an idle call in which the engine worked; a wait is one in which it only asked to be called
// again.
struct LiveReport {
  std::size_t trails = 0;
  std::size_t edits = 0;
  std::size_t steps = 0;
  std::size_t waits = 0;
  double longest_step = 0.0;
  double total_steps = 0.0;
  double longest_edit = 0.0;   // the edit itself, with the messages that it sends
  double last_edit = 0.0;      // when, from the start
  double last_to_exact = 0.0;  // from the last edit until the queue was done, quiet time included
  std::uint64_t samples = 0;   // how many were checked
  std::uint64_t wrong = 0;     // how many differ from the scene
  double largest_difference = 0.0;
};

// Applies the events when they are due and runs the idle loop in between, until no event and no work is left.
// Compares each trail with the scene afterwards.
LiveReport run_live(Session& session, const std::vector<Trail>& trails, const std::vector<LiveEvent>& events);

}  // namespace vantorelix::session
