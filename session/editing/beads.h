// The spacing of an object along its path: dots of its trail are beads that slide on it.
#pragma once

#include "session/editing/obstacle.h"
#include "standalone/scene/curves/key_tangents.h"
#include "standalone/scene/scene.h"

namespace vantorelix::session {

// The keys between which the object can slide at this frame: the nearest of all channels of its translation that move
// there. Throws CannotPlace where it cannot: where no translation of its own moves it, where a channel steps, where
// time does not pass alike in the channels, or at a key.
standalone::FrameRange require_slidable(const standalone::Scene& scene, standalone::NodeId object, double frame);

// Keys at whose other side nothing changes, as where a tangent is broken: the one before the frame, the one after it.
struct KeysAlone {
  bool before = false, after = false;
};

// Puts the object at this frame where its path is at another one, of the same segment between two keys, or as near to
// it as its tangents reach. The path, which is the Bezier of the translation's values, stays what it is: only the
// handles' reach in time changes, as little as will do. Curves get weights where they had none, and the tangents that
// change are fixed. A channel that lacks a key at an end of a segment that changes gets one that keeps its curve,
// as an inserted key does.
//
// A key that was passed without a jump of speed still is: the handle on its other side changes its reach at the same
// rate, up to its whole segment, so that the spacing near the key follows on that path, too. It stays as it is where
// the object stops at the key, where the sides have two slopes, and where the segment beyond is not one to slide on.
//
// Throws CannotPlace as require_slidable does, with nothing changed.
void slide(standalone::Scene& scene, standalone::NodeId object, double frame, double to, const KeysAlone& alone = {});

}  // namespace vantorelix::session
