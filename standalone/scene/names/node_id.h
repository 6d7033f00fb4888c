// Nodes by number.
#pragma once

#include <cstdint>

namespace vantorelix::standalone {

// Never used again for another node. 0 is the world, the parent of top-level nodes.
using NodeId = std::uint32_t;
inline constexpr NodeId kWorld = 0;
inline constexpr NodeId kNoNode = 0xffffffffu;

}  // namespace vantorelix::standalone
