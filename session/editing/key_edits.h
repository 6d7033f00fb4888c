// What handles of keys do: keys in time, keys more and fewer, tangents.
#pragma once

#include <vector>

#include "standalone/scene/scene.h"

namespace vantorelix::session {

// The curves that drive some channels of an object, each once.
using Curves = std::vector<standalone::NodeId>;

// Moves the keys that these curves have at a frame to another time. A key neither lands on a neighbour nor passes one.
// Throws Failure, with nothing moved, where one would, or where no curve has a key there.
void move_keys(standalone::Scene& scene, const Curves& curves, double frame, double to);

// Gives each curve a key at a frame that keeps its shape (standalone/scene/curves/key_insertion.h); those that have one
// there stay. Throws Failure where there is no curve, and host::Error, with nothing inserted, where one has no place
// for it.
void insert_keys(standalone::Scene& scene, const Curves& curves, double frame);

// Throws Failure where no curve has a key there. A curve goes with its last key.
void remove_keys(standalone::Scene& scene, const Curves& curves, double frame);

// One side of a key's tangents: x in seconds, not negative, and y in the curve's values (radians on angles). The
// tangent is fixed from then on. Without weights on the curve only y / x counts.
enum class Side { in, out };
struct Tangent {
  double x, y;
};

// Unified, the other side turns along and keeps its length, unless it is a step; else it stays as it is, which breaks
// the tangent. Nothing else tells a broken tangent from a whole one: it is broken where its sides have two slopes.
// Throws Failure where there is no such key or tangent.
void set_tangent(standalone::Scene& scene, standalone::NodeId curve, double frame, Side side, const Tangent& tangent,
                 bool unified);

// Whether the lengths of tangents count. The curve keeps its shape when they begin to; its slopes when they cease to.
void set_weighted(standalone::Scene& scene, standalone::NodeId curve, bool weighted);

}  // namespace vantorelix::session
