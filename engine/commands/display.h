// How every existing trail is drawn.
#pragma once

#include "host/value.h"

namespace vantorelix {

// 0 "Standard", 1 "Spacing", 2 "Flow", 3 "Beats". Throws when mode is not a number.
void set_color_mode(const host::Value& mode);
// X-ray display of all trails.
void set_ghost(const host::Value& on = true);
// Flips the stored preference, not the nodes' own values.
void toggle_ghost();

}  // namespace vantorelix
