// Clearing trails.
#pragma once

namespace vantorelix {

// Removes the callbacks (which stops the queue), the registry entries and the root group; always says so.
void clear_trails();

}  // namespace vantorelix
