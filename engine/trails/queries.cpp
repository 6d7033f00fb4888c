#include "engine/trails/queries.h"

#include "engine/state/constants.h"
#include "engine/state/state.h"

namespace vantorelix {

bool has_any_trail() { return !cmds->ls_type(NODE_TYPE).empty(); }

std::int64_t trail_count() { return static_cast<std::int64_t>(cmds->ls_type(NODE_TYPE).size()); }

}  // namespace vantorelix
