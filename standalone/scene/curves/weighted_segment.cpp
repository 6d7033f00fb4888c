#include "standalone/scene/curves/weighted_segment.h"

#include <algorithm>
#include <cmath>

namespace vantorelix::standalone {

// Time's polynomial is monotonic while both reaches are at most 1, and beyond that within the ellipse
// out^2 + in^2 + out * in - 2 * out - 2 * in + 1 <= 0, which touches both axes at 1 and bulges to 4/3 (where the other
// reach is 1/3).
Reach keep_time_forward(Reach wanted) {
  Reach reach = {std::max(wanted.out, 0.0), std::max(wanted.in, 0.0)};
  if (reach.out <= 1.0 && reach.in <= 1.0) return reach;
  if (reach.out >= 4.0 / 3.0) return {4.0 / 3.0, 1.0 / 3.0};
  const double b = 2.0 - reach.out;
  const double c = reach.out - 1.0;
  const double half_width = std::sqrt(std::max(b * b - 4.0 * c * c, 0.0)) / 2.0;
  reach.in = std::min(reach.in, b / 2.0 + half_width);
  if (reach.out > 1.0) reach.in = std::max(reach.in, b / 2.0 - half_width);
  return reach;
}

double rescaled(double rise, double from, double to) { return from == to || from == 0.0 ? rise : rise * (to / from); }

WeightedSegment::WeightedSegment(double length, double rise, TangentVector out, TangentVector in) : length_(length) {
  const Reach wanted = {out.x / 3.0 / length, in.x / 3.0 / length};
  const Reach reach = keep_time_forward(wanted);
  const double y1 = rescaled(out.y / 3.0, wanted.out, reach.out);
  const double y2 = rise - rescaled(in.y / 3.0, wanted.in, reach.in);
  const double x1 = reach.out;
  const double x2 = 1.0 - reach.in;
  time1_ = 3.0 * x1;
  time2_ = 3.0 * (x2 - 2.0 * x1);
  time3_ = 1.0 + 3.0 * (x1 - x2);
  value1_ = 3.0 * y1;
  value2_ = 3.0 * (y2 - 2.0 * y1);
  value3_ = rise + 3.0 * (y1 - y2);
}

bool WeightedSegment::is_time_even() const {
  constexpr double kEvenTime = 1e-12;
  return std::abs(time2_) <= kEvenTime && std::abs(time3_) <= kEvenTime;
}

WeightedSegment::Cubic WeightedSegment::as_cubic() const {
  return {value1_ / length_, value2_ / length_ / length_, value3_ / length_ / length_ / length_};
}

double WeightedSegment::at(double elapsed) const {
  const double s = solve(elapsed / length_);
  return ((value3_ * s + value2_) * s + value1_) * s;
}

WeightedSegment::Parts WeightedSegment::split(double elapsed) const {
  const double s = solve(elapsed / length_);
  const auto velocity = [this](double at, double part) -> TangentVector {
    return {part * length_ * ((3.0 * time3_ * at + 2.0 * time2_) * at + time1_),
            part * ((3.0 * value3_ * at + 2.0 * value2_) * at + value1_)};
  };
  return {velocity(0.0, s), velocity(s, s), velocity(s, 1.0 - s), velocity(1.0, 1.0 - s)};
}

// The parameter at which time is `fraction`: Newton's steps, halving the bracket instead where one would leave it.
double WeightedSegment::solve(double fraction) const {
  if (!(fraction > 0.0)) return 0.0;
  if (fraction >= 1.0) return 1.0;
  double low = 0.0;
  double high = 1.0;
  double s = fraction;
  for (int step = 0; step < 100; ++step) {
    const double error = ((time3_ * s + time2_) * s + time1_) * s - fraction;
    if (error == 0.0) break;
    (error > 0.0 ? high : low) = s;
    const double speed = (3.0 * time3_ * s + 2.0 * time2_) * s + time1_;
    double next = s - error / speed;
    if (!(next > low && next < high)) next = low + (high - low) / 2.0;
    const bool settled = std::abs(next - s) <= 1e-15;
    s = next;
    if (settled) break;
  }
  return s;
}

}  // namespace vantorelix::standalone
