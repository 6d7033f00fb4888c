// Speed, acceleration, jerk and curvature along a path.
//
// The derivatives at a sample are those of the polynomial of degree six through it and the three samples on either
// side, with h the seconds from a sample to the next:
//
//   p'   = (45 (p[1] - p[-1]) - 9 (p[2] - p[-2]) + (p[3] - p[-3])) / (60 h)
//   p''  = (270 (p[1] + p[-1]) - 27 (p[2] + p[-2]) + 2 (p[3] + p[-3]) - 490 p[0]) / (180 h^2)
//   p''' = (-13 (p[1] - p[-1]) + 8 (p[2] - p[-2]) - (p[3] - p[-3])) / (8 h^3)
//
// They are exact for motion that is such a polynomial, as a move of least jerk is. Nothing is smoothed. Within three
// samples of an end, and of a position that is not finite, they are not known: a one-sided formula would magnify the
// noise of captured motion ten times as much.
#pragma once

#include <cstddef>
#include <vector>

#include "session/measures/path.h"

namespace vantorelix::session {

// How far it went, and how fast from sample to sample. Steps that are not known are left out.
struct Travel {
  std::size_t steps = 0;  // that are known
  double length = 0.0;
  double slowest = 0.0;  // speeds in units a second, as the next two
  double mean_speed = 0.0;
  double top_speed = 0.0;
  std::size_t top_step = 0;  // the first of those that are fastest
};
Travel travel_of(const Path& path);

// One value a sample, as the lengths of vectors; not a number where it is not known.
struct Kinematics {
  std::vector<double> acceleration;  // units a second squared
  std::vector<double> jerk;          // units a second cubed
  // 1 / units: |p' x p''| / |p'|^3. Not known where the speed |p'| is below kTurning of the mean speed: standing still
  // has no direction.
  std::vector<double> curvature;
};
inline constexpr double kTurning = 0.1;
Kinematics kinematics_of(const Path& path);

// Of the values that are known. Nothing is where there are none.
struct Extremes {
  double mean = kUnknown;
  double least = kUnknown, least_frame = kUnknown;  // the first of equals
  double top = kUnknown, top_frame = kUnknown;
};
Extremes extremes_of(const std::vector<double>& values, const Path& path);

// How unevenly the samples are spaced: the standard deviation of the steps, divided by their mean. 0 at constant speed;
// not known where fewer than two steps are, or nothing moves.
double spacing_variation(const Path& path);

}  // namespace vantorelix::session
