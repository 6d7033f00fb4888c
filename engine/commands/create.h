// Making trails for the selection.
#pragma once

#include <string>

#include "host/value.h"

namespace vantorelix {

// Builds a trail for every selected object within one foreground budget of _CREATE_BUDGET seconds, leaves the rest
// to the rebuild queue, and says so. An argument that is none comes from the preferences.
void create_trail(host::Value samples_per_frame = {}, host::Value line_width = {}, host::Value point_size = {},
                  host::Value show_line = {}, host::Value show_dots = {}, host::Value xray_mode = {},
                  host::Value color_mode = {});

// The group that holds every viz transform, made when it is missing; drawn as reference so that it cannot be picked.
std::string _ensure_root();

// Switches trail display on in every model panel where it is off. Never throws an ordinary error.
void _ensure_trails_visible();

}  // namespace vantorelix
