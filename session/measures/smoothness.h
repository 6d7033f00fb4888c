// How smooth a movement is, by two measures that have no unit and do not depend on its size. Higher is smoother: both
// are below zero, and fall with every hesitation and jolt.
//
// S. Balasubramanian, A. Melendez-Calderon, A. Roby-Brami, E. Burdet: "On the analysis of movement smoothness", Journal
// of NeuroEngineering and Rehabilitation 12:112, 2015.
#pragma once

#include <vector>

#include "session/measures/path.h"

namespace vantorelix::session {

// The spectral arc length (SPARC) of a profile of speeds, `rate` of them a second: how long the line is that the
// magnitudes V(f) of its spectrum draw, scaled to V(0) = 1 and up to the frequency fc,
//
//   SPARC = - integral from 0 to fc of sqrt((1 / fc)^2 + (dV / df)^2) df
//   fc    = the highest frequency up to 10 Hz where V is at least 0.05
//
// as a sum over the spectrum of the speeds followed by zeros (spectrum.h), up to half of `rate` at most. Not known with
// fewer than kLeastSpeeds, where one is not finite, and where all are zero. A move of least jerk has -1.400.
double sparc(const std::vector<double>& speeds, double rate);
inline constexpr std::size_t kLeastSpeeds = 6;

// The logarithm of the dimensionless jerk (LDLJ) over the path's whole duration T, with the velocity v:
//
//   LDLJ = - ln( T^3 / max |v|^2 * integral over T of |d2v / dt2|^2 dt )
//
// The velocity is that from sample to sample. The jerk on the way from a sample to the next is the third difference of
// the four around it, and on the first and the last way that of the way beside it. Not known with fewer than seven
// samples, where a position is not finite, where nothing moves, and where the jerk is no more than the rounding of
// doubles. A move of least jerk has -ln(204.8) = -5.322.
double log_dimensionless_jerk(const Path& path);

}  // namespace vantorelix::session
