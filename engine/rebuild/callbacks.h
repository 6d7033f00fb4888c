// Listening to animation edits.
#pragma once

#include "host/callback.h"

namespace vantorelix {

// Handler of all three messages: schedules a rebuild.
void _on_anim_edit();

// Installs the three message callbacks unless some are installed.
void _ensure_callback();
// Stops the queue and removes the callbacks.
void _remove_callback();

extern const host::Callback _ON_ANIM_EDIT;

}  // namespace vantorelix
