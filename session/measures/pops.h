// Samples that lie far from where their neighbours put them.
#pragma once

#include <cstddef>
#include <vector>

#include "session/measures/path.h"

namespace vantorelix::session {

struct Pop {
  double frame;
  // How many times as far off as the path's samples usually are. A rank, never a verdict: of every path some sample
  // is the farthest off.
  double score;
  double distance;  // from where the neighbours put it
};

// The samples that are farthest off, worst first, at most kMostPops; none where fewer than five samples are, or nothing
// moves.
//
// Where a sample's neighbours put it is on the cubic through the two before it and the two after it,
// (4 (p[1] + p[-1]) - (p[2] + p[-2])) / 6, and its distance from there is how far it is off. Scores are these distances
// divided by their median over the path: their median absolute deviation, since they are deviations already. The
// divisor is at least a hundredth of the mean step (kSlow) and the rounding of coordinates (kRounding), so that nothing
// too small to be seen counts as far. Where one sample pops, those beside it are off, too: only samples count that are
// farther off than the two on either side.
inline constexpr std::size_t kMostPops = 10;
std::vector<Pop> pops_of(const Path& path);

}  // namespace vantorelix::session
