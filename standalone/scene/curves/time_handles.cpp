#include "standalone/scene/curves/time_handles.h"

#include <algorithm>

#include "standalone/scene/curves/key_tangents.h"
#include "standalone/scene/curves/weighted_segment.h"

namespace vantorelix::standalone {

namespace {

// Handles that are longer than 1 by less are so by rounding.
constexpr double kRounding = 1e-12;

// out * out_share + in * in_share is constant on the handles with which a parameter has one time.
struct Shares {
  double out, in;
};

double least(double handle) { return std::min(kShortestHandle, handle); }

// The handle with which its share makes up what is missing, or as near to it as it gets.
double making_up(double missing, double share, double low) {
  return share == 0.0 ? low : std::clamp(missing / share, low, 1.0);
}

}  // namespace

SegmentBezier bezier_after(const AnimCurve& curve, std::size_t key) {
  const Key &left = curve.keys()[key], &right = curve.keys()[key + 1];
  const std::vector<KeyTangents> tangents = tangents_of(curve);
  const double out_y = tangents[key].out_y, in_y = tangents[key + 1].in_y;
  const double length = right.time - left.time;
  const Reach wanted = {tangents[key].out_x / 3.0 / length, tangents[key + 1].in_x / 3.0 / length};
  const Reach reach = keep_time_forward(wanted);
  const bool line = left.out == Tangent::linear && right.in == Tangent::linear;
  return {{reach.out, reach.in},
          rescaled(out_y, wanted.out, reach.out),
          rescaled(in_y, wanted.in, reach.in),
          line,
          std::max(wanted.out, wanted.in) > 1.0 + kRounding};
}

double parameter_after(const TimeHandles& time, double part) {
  return WeightedSegment(1.0, 0.0, {3.0 * time.out, 0.0}, {3.0 * time.in, 0.0}).parameter_after(part);
}

TimeHandles slid(const TimeHandles& from, double parameter, double part) {
  const double u = std::clamp(parameter, 0.0, 1.0), rest = 1.0 - u;
  const Shares share = {3.0 * u * rest * rest, -3.0 * u * u * rest};
  const double missing = part - u * u * (3.0 * rest + u);  // with handles of 0
  const double behind = missing - share.out * from.out - share.in * from.in;
  const double low_out = least(from.out), low_in = least(from.in);
  const double squared = share.out * share.out + share.in * share.in;
  if (!(squared > 0.0)) return behind > 0.0 ? TimeHandles{1.0, low_in} : TimeHandles{low_out, 1.0};  // at a key
  const TimeHandles nearest = {from.out + behind / squared * share.out, from.in + behind / squared * share.in};
  TimeHandles to = {std::clamp(nearest.out, low_out, 1.0), std::clamp(nearest.in, low_in, 1.0)};
  if (to.out != nearest.out)
    to.in = making_up(missing - share.out * to.out, share.in, low_in);
  else if (to.in != nearest.in)
    to.out = making_up(missing - share.in * to.in, share.out, low_out);
  return to;
}

}  // namespace vantorelix::standalone
