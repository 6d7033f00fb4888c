#include "session/editing/beads.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>
#include <variant>

#include "base/number_text.h"
#include "session/editing/key_edits.h"
#include "session/editing/path_segment.h"

namespace vantorelix::session {

using standalone::Channel;
using standalone::FrameRange;
using standalone::Key;
using standalone::NodeId;
using standalone::Scene;
using standalone::TimeHandles;

namespace {

// Slopes that differ by less, in parts of the steeper one, are the same.
constexpr double kSameSlope = 1e-9;

PathSegment slidable(const Scene& scene, NodeId object, double frame) {
  auto found = path_segment(scene, object, frame);
  if (const auto* const why_not = std::get_if<CannotPlace>(&found)) throw *why_not;
  auto& segment = std::get<PathSegment>(found);
  if (segment.first == frame)
    throw CannotPlace(Obstacle::at_key, "the translation of " + scene.names.unique_name(object) +
                                            " has a key at frame " + number_text(frame) + ", which holds its place");
  return std::move(segment);
}

// How fast a channel enters or leaves a segment, in its values a frame; 0 where it does not move in it.
double speed(const PathSegment& segment, Channel channel, Side side) {
  for (const PathSegment::Moving& moving : segment.channels) {
    if (moving.channel != channel) continue;
    const double reach = 3.0 * segment.frames() * (side == Side::out ? segment.time.out : segment.time.in);
    return (side == Side::out ? moving.bezier.out_y : moving.bezier.in_y) / reach;
  }
  return 0.0;
}

// Whether one segment goes over into the next without a jump of speed and without a stop.
bool flows_on(const PathSegment& left, const PathSegment& right) {
  bool flows = false;
  for (std::size_t k = 0; k < 3; ++k) {
    const Channel channel = standalone::component(Channel::translateX, k);
    const double into = speed(left, channel, Side::in), from = speed(right, channel, Side::out);
    if (!(std::abs(into - from) <= kSameSlope * std::max(std::abs(into), std::abs(from)))) return false;
    flows = flows || into != 0.0;
  }
  return flows;
}

bool is_cut(const PathSegment& segment) {
  return std::any_of(segment.channels.begin(), segment.channels.end(),
                     [](const PathSegment::Moving& moving) { return moving.bezier.cut; });
}

// The segment after or before one, where the motion flows on over the key between, and evaluation has all of its
// handles as they are.
std::optional<PathSegment> beyond(const Scene& scene, NodeId object, const PathSegment& segment, bool after) {
  const double just_before = std::nextafter(segment.first, -std::numeric_limits<double>::infinity());
  auto found = path_segment(scene, object, after ? segment.last : just_before);
  auto* const next = std::get_if<PathSegment>(&found);
  if (next == nullptr || is_cut(*next)) return std::nullopt;
  const bool joined = after ? next->first == segment.last : next->last == segment.first;
  if (!joined || !(after ? flows_on(segment, *next) : flows_on(*next, segment))) return std::nullopt;
  return std::move(*next);
}

// Gives a segment other handles in time, and keys at its ends where a channel lacks them, and fixes what changes.
void retime(Scene& scene, const PathSegment& segment, const TimeHandles& time) {
  for (const PathSegment::Moving& moving : segment.channels) {
    const standalone::SegmentBezier& bezier = moving.bezier;
    const bool both = bezier.line || bezier.cut;
    for (const double end : {segment.first, segment.last}) insert_keys(scene, {moving.curve}, end);
    set_weighted(scene, moving.curve, true);
    const standalone::AnimCurve& curve = scene.curves.at(moving.curve);
    const double reach = 3.0 * segment.frames(), rate = curve.frames_per_second();
    Key left = *curve.key_at(segment.first), right = *curve.key_at(segment.last);
    if (both || time.out != segment.time.out) {
      standalone::fix_out(left, reach * time.out, bezier.out_y, rate);
      scene.curves.set_key(moving.curve, left);
    }
    if (both || time.in != segment.time.in) {
      standalone::fix_in(right, reach * time.in, bezier.in_y, rate);
      scene.curves.set_key(moving.curve, right);
    }
  }
}

}  // namespace

FrameRange require_slidable(const Scene& scene, NodeId object, double frame) {
  const PathSegment segment = slidable(scene, object, frame);
  return {segment.first, segment.last};
}

void slide(Scene& scene, NodeId object, double frame, double to, const KeysAlone& alone) {
  const PathSegment segment = slidable(scene, object, frame);
  if (!std::isfinite(to)) throw CannotPlace(Obstacle::not_finite, "a frame is a finite number");
  if (to == frame) return;
  const auto part = [&](double at) {
    return (std::clamp(at, segment.first, segment.last) - segment.first) / segment.frames();
  };
  const TimeHandles& old = segment.time;
  const TimeHandles time = standalone::slid(old, standalone::parameter_after(old, part(to)), part(frame));
  std::optional<PathSegment> before, after;
  if (time.out != old.out && !alone.before) before = beyond(scene, object, segment, false);
  if (time.in != old.in && !alone.after) after = beyond(scene, object, segment, true);
  retime(scene, segment, time);
  if (before) retime(scene, *before, {before->time.out, std::min(before->time.in * (time.out / old.out), 1.0)});
  if (after) retime(scene, *after, {std::min(after->time.out * (time.in / old.in), 1.0), after->time.in});
}

}  // namespace vantorelix::session
