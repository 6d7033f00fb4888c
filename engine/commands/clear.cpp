#include "engine/commands/clear.h"

#include "engine/rebuild/callbacks.h"
#include "engine/state/constants.h"
#include "engine/state/messages.h"
#include "engine/state/state.h"

namespace vantorelix {

void clear_trails() {
  _remove_callback();
  _REGISTRY.clear();
  if (cmds->objExists(TRAIL_ROOT)) cmds->delete_(TRAIL_ROOT);
  _msg("All trails cleared.");
}

}  // namespace vantorelix
