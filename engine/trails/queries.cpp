#include "engine/trails/queries.h"

#include "engine/frame/constants.h"
#include "engine/frame/messages.h"
#include "engine/frame/state.h"
#include "engine/rebuild/callbacks.h"

namespace vantorelix {

bool has_any_trail() { return !cmds->ls_type(NODE_TYPE).empty(); }

std::int64_t trail_count() { return static_cast<std::int64_t>(cmds->ls_type(NODE_TYPE).size()); }

void clear_trails() {
  _remove_callback();
  _REGISTRY.clear();
  if (cmds->objExists(TRAIL_ROOT)) cmds->delete_(TRAIL_ROOT);
  _msg("All trails cleared.");
}

}  // namespace vantorelix
