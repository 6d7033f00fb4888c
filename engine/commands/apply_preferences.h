// Bringing existing trails in line with changed preferences.
#pragma once

namespace vantorelix {

// Writes the display preferences onto every viz shape in the scene. With the flag, also gives every registered trail
// the current density and schedules a rebuild; the caller knows whether the density changed.
void apply_prefs_to_existing_trails(bool rebuild_if_samples_changed = false);

}  // namespace vantorelix
