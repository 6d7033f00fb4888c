// Where trails will be, before the engine has rebuilt them.
#pragma once

#include <cstddef>
#include <vector>

#include "base/vector.h"
#include "session/report.h"
#include "standalone/scene/curves/key_tangents.h"
#include "standalone/scene/scene.h"

namespace vantorelix::session {

// Some of a trail's samples in a row.
struct Stretch {
  std::size_t trail;  // its place in the report
  std::size_t first;  // the first sample
  std::vector<Vector> points;
};

// Where the samples in a range of frames are now, of those trails that an edit of the object moves: its own, those of
// its descendants, and of what else hangs on its channels. They are the positions, to the last bit, that the engine
// finds when it rebuilds these trails. `trails` are those of the report, in its order. Trails without a sample in the
// range are left out. A sample of an object that has gone is none.
std::vector<Stretch> provisional(const standalone::Scene& scene, const std::vector<Trail>& trails,
                                 const TrailReport& report, standalone::NodeId edited,
                                 const standalone::FrameRange& range);

// Outside of this range no edit of keys at this frame is felt: of the curve of one channel, or of all curves of an
// object. Everything where there is no curve.
standalone::FrameRange felt_around(const standalone::Scene& scene, const std::vector<standalone::NodeId>& curves,
                                   double frame);

}  // namespace vantorelix::session
