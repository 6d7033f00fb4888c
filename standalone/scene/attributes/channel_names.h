// The names of channels. One table has them, with those of all other known attributes: attribute_names.cpp.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "standalone/scene/transforms/channel.h"

namespace vantorelix::standalone {

// One channel ("translateX"), or the three in a row of a compound ("translate").
struct NamedChannels {
  Channel first;
  std::size_t count;
};

// What a long or short name stands for on a joint, which has all channels, or on other transforms. None for an
// attribute that is not a channel.
std::optional<NamedChannels> channels_named(std::string_view name, bool joint = true);
// The long name.
const std::string& name_of(Channel c);
// Shown in degrees and kept in radians.
bool is_angle(Channel c);

}  // namespace vantorelix::standalone
