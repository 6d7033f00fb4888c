// One animation curve: keys, tangents, infinity, and its value at any frame.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vantorelix::standalone {

// What a key's in or out side does. The numbers are those of scene files.
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

enum class Infinity : std::uint8_t { constant = 0, linear = 1, cycle = 3, cycle_offset = 4, oscillate = 5 };

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

// Keys are kept ascending in time, one per time. Any change recomputes the tangents around it and the segments'
// polynomials, so that evaluation is a look-up and a cubic.
class AnimCurve {
 public:
  explicit AnimCurve(CurveKind kind = CurveKind::linear, double frames_per_second = 24.0);

  CurveKind kind() const { return kind_; }
  const std::vector<Key>& keys() const { return keys_; }
  bool weighted() const { return weighted_; }
  Infinity pre_infinity() const { return pre_; }
  Infinity post_infinity() const { return post_; }

  // Replaces everything at once: the way of the scene readers. Unsorted keys are sorted (stably); of keys at the
  // same time the last wins. Throws host::Error of kind value for a time or value that is not finite.
  void assign(std::vector<Key> keys, bool weighted, Infinity pre, Infinity post);
  // Adds a key, or changes the value of the one at that time (its tangents stay).
  void set_key(double time, double value);
  void set_key(const Key& key);
  // False when there is no key at that time.
  bool remove_key(double time);
  void set_weighted(bool weighted);
  void set_infinity(Infinity pre, Infinity post);
  void set_frames_per_second(double frames_per_second);

  // The value at a frame; 0 without keys. `hint` is the caller's memory of the last segment: start it at 0, pass
  // it again; it is only ever a place to look first.
  double evaluate(double frame, std::size_t& hint) const;
  double evaluate(double frame) const {
    std::size_t hint = 0;
    return evaluate(frame, hint);
  }
  // True when every frame gives the same value.
  bool is_constant() const;

 private:
  CurveKind kind_;
  double frames_per_second_;
  bool weighted_ = false;
  Infinity pre_ = Infinity::constant;
  Infinity post_ = Infinity::constant;
  std::vector<Key> keys_;
};

}  // namespace vantorelix::standalone
