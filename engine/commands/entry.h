// The user's gestures and command names.
#pragma once

#include "host/value.h"

namespace vantorelix {

// Runs the one command that the gesture or name stands for; anything unknown, the empty action included, opens the
// mini menu. Throws what the command throws, and host::Error of kind attribute for an action that is not a text.
void pellark_entry(const host::Value& action = {});

// Opens the front end's mini menu; false when there is none.
bool _open_menu();

}  // namespace vantorelix
