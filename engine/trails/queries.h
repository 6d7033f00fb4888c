// Finding, counting and clearing trails. The queries look at the scene, not at the registry.
#pragma once

#include <cstdint>

namespace vantorelix {

bool has_any_trail();
std::int64_t trail_count();

// Removes the callbacks (which stops the queue), the registry entries and the root group; always says so.
void clear_trails();

}  // namespace vantorelix
