// Where an object is at evenly spaced frames: what every measure is taken of.
#pragma once

#include <cstddef>
#include <limits>
#include <vector>

#include "base/vector.h"

namespace vantorelix::session {

// Stands for a measure that is not known.
inline constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();

// The points have to outlive it. A frame is 1 / fps seconds.
struct Path {
  Path(const std::vector<Vector>& positions, double first_frame, double frames_a_step, double frames_a_second);

  const std::vector<Vector>& points;
  double start_frame;
  double frame_step;
  double fps;
  // How far it is from each sample to the next, one fewer than points; not a number beside one that is not finite.
  std::vector<double> steps;

  double frame(std::size_t sample) const { return start_frame + static_cast<double>(sample) * frame_step; }
  // Samples a second.
  double rate() const { return fps / frame_step; }
};

// The largest coordinate of the finite points, without sign.
double largest_coordinate(const Path& path);

// What stays within this part of its own coordinates moves by their rounding at most: files hold 24 bits, and several
// are composed.
inline constexpr double kRounding = 2e-6;

// A step up to this long is none, as for the engine, whose mean leaves such steps out.
inline constexpr double kNoStep = 1e-9;

// The mean of the steps that are longer than kNoStep; 0 where there are none.
double mean_active_step(const Path& path);

// The part of that mean up to which a step counts as none, and a deviation as too small to be seen.
inline constexpr double kSlow = 0.01;

}  // namespace vantorelix::session
