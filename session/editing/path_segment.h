// The path of an object between two neighbouring keys, whatever time does along it.
#pragma once

#include <variant>
#include <vector>

#include "session/editing/obstacle.h"
#include "standalone/scene/curves/time_handles.h"
#include "standalone/scene/scene.h"

namespace vantorelix::session {

// Between two keys of an object's own translation where time passes alike in all channels that move, the object goes
// along a Bezier in space, and the handles in time say when. A channel that has no key at an end of it is looked at as
// if one were inserted, which leaves its curve as it is.
struct PathSegment {
  struct Moving {
    standalone::Channel channel;
    standalone::NodeId curve;
    standalone::SegmentBezier bezier;
  };

  double first, last;  // frames
  standalone::TimeHandles time;
  std::vector<Moving> channels;  // not empty, with handles as if all had `time`

  double frames() const { return last - first; }
};

// From the last key that is not later than the frame, of those between which a channel moves; or why there is none.
std::variant<PathSegment, CannotPlace> path_segment(const standalone::Scene& scene, standalone::NodeId object,
                                                    double frame);

}  // namespace vantorelix::session
