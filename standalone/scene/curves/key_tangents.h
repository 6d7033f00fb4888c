// How a curve's tangents lie, whatever their sort, and where an edit of a key is felt.
#pragma once

#include <cstddef>
#include <vector>

#include "standalone/scene/curves/anim_curve.h"

namespace vantorelix::standalone {

// The vectors along which a curve enters and leaves a key, both forward in time: x in frames, never negative, and y in
// the curve's values. Of each piece of curve between two keys they are three times as long as the handles of its
// Bezier. Where tangents are not weighted, x is the distance to the neighbour. At the ends of the curve, where there is
// no neighbour, x is that of the other side, 1 for a single key, and with weights that of a fixed tangent. Where
// weights would take time backwards, evaluation shortens them; these are before that.
struct KeyTangents {
  double in_x, in_y, out_x, out_y;
};

// One for each key, as evaluation has them. A side that steps is flat, and so is one that is too steep for a number.
std::vector<KeyTangents> tangents_of(const AnimCurve& curve);

// A side of a key with a fixed tangent along a vector, which is given as above.
void fix_in(Key& key, double x, double y, double frames_per_second);
void fix_out(Key& key, double x, double y, double frames_per_second);

// Frames; infinite where the curve goes on that way.
struct FrameRange {
  double first, last;
};

// Outside of it no edit of the key at this frame, of its value or of its tangents, changes the curve; nor does adding
// or removing it. It includes what automatic tangents of neighbours do.
FrameRange felt_around(const AnimCurve& curve, double frame);

}  // namespace vantorelix::standalone
