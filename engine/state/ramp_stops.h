// The stops of the colour ramp.
#pragma once

#include <array>

#include "base/vector.h"

namespace vantorelix {

struct RampStop {
  double t;
  Vector colour;
};

// Blue, cyan, green, yellow, orange, red. Unevenly placed on purpose: yellow to red takes the top 30 %.
inline constexpr std::array<RampStop, 6> _RAMP_STOPS = {{
    {0.0, {0.0, 0.0, 1.0}},
    {0.25, {0.0, 1.0, 1.0}},
    {0.5, {0.0, 1.0, 0.0}},
    {0.7, {1.0, 1.0, 0.0}},
    {0.85, {1.0, 0.5, 0.0}},
    {1.0, {1.0, 0.0, 0.0}},
}};

}  // namespace vantorelix
