// Small questions about a trail's nodes and settings that several commands ask.
#pragma once

#include <string>

#include "engine/state/state.h"

namespace vantorelix {

// What follows the last "|" of a DAG path; the whole name where there is none.
std::string _short_name(const std::string& path);

// Full path of the first shape below a transform. Throws host::Error of kind type when it has none.
std::string _first_shape(const std::string& transform);

// The animated object that a trail follows. Throws host::Error: kind key when the entry is missing, type when it is
// no text.
std::string _source_of(const Settings& settings);

}  // namespace vantorelix
