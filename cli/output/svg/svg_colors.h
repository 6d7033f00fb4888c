// The colours of a picture's trails.
#pragma once

#include <cstddef>

#include "base/vector.h"
#include "cli/output/svg/svg_line.h"
#include "session/report.h"

namespace vantorelix::cli {

struct Coloring {
  bool by_object = false;  // each object its own colour, rather than by the trail's colour mode
  bool safe = false;       // for every kind of colour vision: not the engine's own colours
};

// How a trail of the report is drawn. Colours: by object; else the node's own for spacing, and for the other modes by
// the engine's rules, flow around the report's current frame.
Look look_of(const session::TrailReport& report, std::size_t index, const Coloring& coloring, bool lit);

// Of the mode flow.
struct FlowColors {
  Vector past, future;
};
FlowColors flow_colors(const Coloring& coloring);
// Of the mode beats: after an odd and after an even key.
struct BeatColors {
  Vector odd, even;
};
BeatColors beat_colors(const Coloring& coloring);

// The colour of the trail at this place of the report when each object has its own: eight in turn.
Vector object_color(std::size_t index);
// At t of 0..1 on the ramp from slow to fast.
Vector speed_color(double t, const Coloring& coloring);

}  // namespace vantorelix::cli
