// What an animation curve is made of: its keys, and what happens beyond them.
#pragma once

#include <cstdint>

namespace vantorelix::standalone {

// What a key's in or out side does. The numbers are those of scene files. `global` stands for the default, which is
// automatic; automatic_mix, automatic_ease and automatic_custom behave as automatic, the sort they refine.
enum class Tangent : std::uint8_t {
  global = 0,
  fixed = 1,
  linear = 2,
  flat = 3,
  step = 5,
  slow = 6,
  fast = 7,
  spline = 9,
  clamped = 10,
  plateau = 16,
  step_next = 17,
  automatic = 18,
  automatic_mix = 19,
  automatic_ease = 20,
  automatic_custom = 21,
};

// Whether an out side holds its key's value, or takes the next one's at once.
constexpr bool steps(Tangent out) { return out == Tangent::step || out == Tangent::step_next; }

enum class Infinity : std::uint8_t { constant = 0, linear = 1, cycle = 3, cycle_offset = 4, oscillate = 5 };

constexpr bool repeats(Infinity infinity) { return infinity != Infinity::constant && infinity != Infinity::linear; }

// What a curve's values are. Angular values are radians inside; the rest are in the scene's own units.
enum class CurveKind : std::uint8_t { linear, angular, unitless, time };

struct Key {
  double time = 0.0;   // frames
  double value = 0.0;  // radians on angular curves
  Tangent in = Tangent::automatic;
  Tangent out = Tangent::automatic;
  // Fixed tangents: x in seconds, y in value units. With weighted tangents the lengths count; without, only y / x.
  double in_x = 1.0;
  double in_y = 0.0;
  double out_x = 1.0;
  double out_y = 0.0;
};

}  // namespace vantorelix::standalone
