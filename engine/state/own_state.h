// Several engines in one process, by turns: a state of one's own that takes the place of the module's.
#pragma once

#include "engine/state/state.h"

namespace vantorelix {

// Holds what the module remembers for one host while another is at work. Everything that reaches the engine on that
// host (its functions, an edit that sends messages, the idle loop) happens inside a Turn. One thread.
class OwnState {
 public:
  OwnState() = default;
  // Lets go of what it holds, with it in force. Not inside one of its turns; its host is still there.
  ~OwnState();
  OwnState(const OwnState&) = delete;
  OwnState& operator=(const OwnState&) = delete;

  // Puts the state in force until its destructor puts back what was in force before. Turns of different states may be
  // nested, and a turn directly inside one of the same state changes nothing. But a turn of A inside a turn of B inside
  // one of A throws std::logic_error: A's `waiting_` holds the state that A took the place of, not its own.
  class Turn {
   public:
    explicit Turn(OwnState& own);
    ~Turn();
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

   private:
    OwnState& own_;
    OwnState* const outer_;  // whose turn it was
  };

 private:
  ModuleState waiting_;  // inside its turn: what was in force before
  bool in_turn_ = false;
};

}  // namespace vantorelix
