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

  // Puts the state in force for as long as it lives, whatever ends it, and then what was in force before. Turns of
  // different states may lie inside each other, and a turn inside a turn of the same state changes nothing; only A
  // inside B inside A cannot be: throws std::logic_error.
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
