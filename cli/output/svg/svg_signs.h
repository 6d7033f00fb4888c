// Signs along a trail: which way it runs, and where it holds.
#pragma once

#include <vector>

#include "base/text_sink.h"
#include "cli/output/svg/svg_labels.h"
#include "cli/output/svg/svg_line.h"

namespace vantorelix::cli {

// A small triangle that points along the line.
struct Arrow {
  Point2 at;
  Point2 along;  // of length 1
};

// Along the lit trails whose lines are drawn, where there is room.
std::vector<Arrow> choose_arrows(const std::vector<DrawnTrail>& trails, const Thinning& thinning, Occupancy& occupancy);
void draw_arrows(TextSink& out, const std::vector<Arrow>& arrows);

// A place where an object stands still for a while.
struct HoldMark {
  Point2 at;
  double first, last;  // frames
};
struct Holds {
  std::vector<HoldMark> marks;  // of the lit trails, none on top of another
  std::size_t all = 0;          // how many holds the trails have
};
Holds choose_holds(const std::vector<DrawnTrail>& trails, const Box2& area);
void draw_holds(TextSink& out, const std::vector<HoldMark>& marks);
// The frames of the holds that have room for them.
std::vector<Label> label_holds(const std::vector<HoldMark>& marks, Occupancy& occupancy);

}  // namespace vantorelix::cli
