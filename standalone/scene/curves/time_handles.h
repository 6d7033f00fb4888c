// Another spacing on the same path: what time does along the Bezier between two keys.
#pragma once

#include <cstddef>

#include "standalone/scene/curves/anim_curve.h"

namespace vantorelix::standalone {

// How far the handles of a Bezier reach in time, from its first key forward and from its second backward, as parts of
// the time between them. From 0 to 1 each, time never runs backward.
struct TimeHandles {
  double out, in;
};

// A piece of curve between two keys as evaluation has it. Its value goes along the same Bezier whatever time does: two
// curves with the same handles in time go along one path, and with others along the same path at another speed.
struct SegmentBezier {
  TimeHandles time;
  double out_y, in_y;  // three times the handles' rise, as in KeyTangents
  bool line;           // both sides are linear: any handles along the line make the same curve
  bool cut;            // evaluation has shortened the key's own tangents
};

// Of the piece after a key that has a next one and does not step. Lines have handles of a third.
SegmentBezier bezier_after(const AnimCurve& curve, std::size_t key);

// Where on its Bezier such a piece is after a part of its time; all are from 0 to 1.
double parameter_after(const TimeHandles& time, double part);

// Handles this short, in parts of the time, are not made any shorter: without a reach in time a slope is lost.
constexpr double kShortestHandle = 1e-3;

// The handles nearest to those given with which the Bezier is at this parameter after a part of its time, or as near to
// it as handles of kShortestHandle (or what is shorter already) to 1 bring it.
TimeHandles slid(const TimeHandles& from, double parameter, double part);

}  // namespace vantorelix::standalone
