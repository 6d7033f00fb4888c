#include "engine/state/own_state.h"

#include <stdexcept>
#include <utility>

namespace vantorelix {

namespace {

OwnState* in_force = nullptr;  // null where the module's own state is

}  // namespace

OwnState::~OwnState() {
  const Turn turn(*this);
  _forget();
}

OwnState::Turn::Turn(OwnState& own) : own_(own), outer_(in_force) {
  if (outer_ == &own) return;
  if (own.in_turn_)
    throw std::logic_error(
        "the session of this scene is waiting for another one that it called; call it again when that call has "
        "returned");
  std::swap(module_state, own.waiting_);
  own.in_turn_ = true;
  in_force = &own;
}

OwnState::Turn::~Turn() {
  if (outer_ == &own_) return;
  std::swap(module_state, own_.waiting_);
  own_.in_turn_ = false;
  in_force = outer_;
}

}  // namespace vantorelix
