// Messages to the user.
#pragma once

#include "host/value.h"

namespace vantorelix {

// Shows `text` (normally a text; anything else is handed on unchanged) to the user: through the installed handler,
// or, without one or when it fails, as a fading message in the viewport; and prints "[Vantorelix] text" once. Only
// a failure of the last print leaves it.
void _msg(const host::Value& text);

// Installs a callable taking one argument, the bare text. Anything not callable, none included, restores the
// messages in the viewport.
void _set_msg_handler(const host::Value& fn);

}  // namespace vantorelix
