#include "engine/state/messages.h"

#include "engine/state/attempt.h"
#include "engine/state/constants.h"
#include "engine/state/state.h"

namespace vantorelix {

namespace {

void print(const host::Value& text) { interpreter->print("[" + SCRIPT_NAME + "] " + text.text()); }

}  // namespace

void _msg(const host::Value& text) {
  // The print is inside the guard: where it fails, the message is shown in the viewport and printed once more.
  if (_MSG_HANDLER.callable() && attempt([&] {
        const host::Value handler = _MSG_HANDLER;  // kept alive: the handler may replace itself
        (*handler.as_object())->call(text);
        print(text);
      }))
    return;
  attempt([&] { cmds->inViewMessage(text); });
  print(text);
}

void _set_msg_handler(const host::Value& fn) { _MSG_HANDLER = fn.callable() ? fn : host::Value(); }

}  // namespace vantorelix
