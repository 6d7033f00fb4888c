#include "standalone/scene/curves/tangents.h"

#include <algorithm>
#include <cmath>

namespace vantorelix::standalone {

namespace {

// As steep as a tangent gets, in value units a second: a thousandth of a hundredth of a degree from the vertical.
constexpr double kSteepest = 5729577.9485111479;

// Values this close count as equal for clamped tangents.
constexpr double kClampDistance = 0.05;

double chord(const Key& a, const Key& b) { return (b.value - a.value) / (b.time - a.time); }

// To the neighbour on one side, or to the only one there is.
double linear_slope(const KeyPlace& place, const Key* neighbour) {
  if (neighbour == nullptr) neighbour = place.previous != nullptr ? place.previous : place.next;
  return neighbour == nullptr ? 0.0 : chord(place.key, *neighbour);
}

double spline_slope(const KeyPlace& place) {
  if (place.previous == nullptr) return linear_slope(place, place.next);
  if (place.next == nullptr) return linear_slope(place, place.previous);
  return chord(*place.previous, *place.next);
}

double clamped_slope(const KeyPlace& place, const Key* neighbour) {
  if (neighbour != nullptr && std::abs(neighbour->value - place.key.value) <= kClampDistance)
    return linear_slope(place, neighbour);
  return spline_slope(place);
}

// The spline's slope, flat at the ends and where the curve turns, and never so steep that a third of the way along it
// would lead beyond a neighbour's value: then the cubic stays between its keys.
double plateau_slope(const KeyPlace& place) {
  if (place.previous == nullptr || place.next == nullptr) return 0.0;
  const double before = chord(*place.previous, place.key);
  const double after = chord(place.key, *place.next);
  if (!(before > 0.0 && after > 0.0) && !(before < 0.0 && after < 0.0)) return 0.0;
  const double steepest = 3.0 * std::min(std::abs(before), std::abs(after));
  return std::clamp(chord(*place.previous, *place.next), -steepest, steepest);
}

double fixed_slope(double x, double y, double frames_per_second) {
  if (y == 0.0) return 0.0;
  const double slope = x > 0.0 ? y / x : std::copysign(kSteepest, y);
  return std::clamp(slope, -kSteepest, kSteepest) / frames_per_second;
}

// Whatever is not fixed. `neighbour` is the one on this side, null at the end of the curve.
double computed_slope(const KeyPlace& place, Tangent tangent, const Key* neighbour) {
  switch (tangent) {
    case Tangent::linear:
      return linear_slope(place, neighbour);
    case Tangent::spline:
      return spline_slope(place);
    case Tangent::clamped:
      return clamped_slope(place, neighbour);
    case Tangent::fast:
      // With a slow tangent at the segment's other end: evenly accelerated motion.
      return 2.0 * linear_slope(place, neighbour);
    case Tangent::fixed:
    case Tangent::flat:
    case Tangent::slow:
    case Tangent::step:
    case Tangent::step_next:
      return 0.0;
    default:
      return plateau_slope(place);
  }
}

}  // namespace

double in_slope(const KeyPlace& place, double frames_per_second) {
  const Key& key = place.key;
  if (key.in == Tangent::fixed) return fixed_slope(key.in_x, key.in_y, frames_per_second);
  return computed_slope(place, key.in, place.previous);
}

double out_slope(const KeyPlace& place, double frames_per_second) {
  const Key& key = place.key;
  if (key.out == Tangent::fixed) return fixed_slope(key.out_x, key.out_y, frames_per_second);
  return computed_slope(place, key.out, place.next);
}

TangentVector in_vector(const KeyPlace& place, double frames_per_second) {
  const Key& key = place.key;
  if (key.in == Tangent::fixed) return {key.in_x * frames_per_second, key.in_y};
  const double reach = key.time - place.previous->time;
  return {reach, computed_slope(place, key.in, place.previous) * reach};
}

TangentVector out_vector(const KeyPlace& place, double frames_per_second) {
  const Key& key = place.key;
  if (key.out == Tangent::fixed) return {key.out_x * frames_per_second, key.out_y};
  const double reach = place.next->time - key.time;
  return {reach, computed_slope(place, key.out, place.next) * reach};
}

}  // namespace vantorelix::standalone
