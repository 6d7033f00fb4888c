#include "standalone/scene/curves/curve_segments.h"

#include <cmath>

#include "standalone/scene/curves/tangents.h"

namespace vantorelix::standalone {

namespace {

class Builder {
 public:
  Builder(std::span<const Key> keys, bool weighted, double frames_per_second)
      : keys_(keys), weighted_(weighted), frames_per_second_(frames_per_second) {}

  CurveSegments build() {
    if (keys_.empty()) return {};
    made_.segments.reserve(keys_.size() + 1);
    made_.values.reserve(keys_.size() + 1);
    for (std::size_t i = 0; i + 1 < keys_.size(); ++i) add(i);
    push(keys_.back().value, {keys_.back().time});
    push(0.0, {std::numeric_limits<double>::infinity()});
    if (!made_.weighted.empty()) made_.weighted.resize(made_.segments.size());
    return std::move(made_);
  }

 private:
  void push(double value, const CurveSegment& segment) {
    made_.segments.push_back(segment);
    made_.values.push_back(value);
  }

  void add(std::size_t i) {
    const Key& key = keys_[i];
    const Key& next = keys_[i + 1];
    if (steps(key.out)) {
      push(key.value, {key.time});
      const double just_after = std::nextafter(key.time, next.time);
      if (key.out == Tangent::step_next && just_after < next.time) push(next.value, {just_after});
    } else if (key.out == Tangent::linear && next.in == Tangent::linear) {
      add_line(key, next);
    } else if (weighted_) {
      add_weighted(i);
    } else {
      add_hermite(i);
    }
  }

  void add_line(const Key& key, const Key& next) {
    const double slope = (next.value - key.value) / (next.time - key.time);
    push(key.value, {key.time, std::isfinite(slope) ? slope : 0.0});
  }

  void add_cubic(const Key& key, const Key& next, double c1, double c2, double c3) {
    if (std::isfinite(c1) && std::isfinite(c2) && std::isfinite(c3))
      push(key.value, {key.time, c1, c2, c3});
    else
      add_line(key, next);
  }

  void add_hermite(std::size_t i) {
    const Key& key = keys_[i];
    const Key& next = keys_[i + 1];
    const double length = next.time - key.time;
    const double mean = (next.value - key.value) / length;
    const double out = out_slope(place(i), frames_per_second_);
    const double in = in_slope(place(i + 1), frames_per_second_);
    add_cubic(key, next, out, (3.0 * mean - 2.0 * out - in) / length, (out + in - 2.0 * mean) / length / length);
  }

  void add_weighted(std::size_t i) {
    const Key& key = keys_[i];
    const Key& next = keys_[i + 1];
    const double rise = next.value - key.value;
    const TangentVector out = out_vector(place(i), frames_per_second_);
    const TangentVector in = in_vector(place(i + 1), frames_per_second_);
    const WeightedSegment segment(next.time - key.time, rise, out, in);
    const bool level = rise == 0.0 && out.y == 0.0 && in.y == 0.0;
    if (level || segment.is_time_even()) {
      const auto [c1, c2, c3] = segment.as_cubic();
      add_cubic(key, next, c1, c2, c3);
    } else if (!std::isfinite(segment.at((next.time - key.time) / 2.0))) {
      add_line(key, next);
    } else {
      made_.weighted.resize(made_.segments.size());
      made_.weighted.push_back(segment);
      push(key.value, {key.time});
      made_.segments.back().set_not_cubic();
    }
  }

  KeyPlace place(std::size_t i) const {
    return {i > 0 ? &keys_[i - 1] : nullptr, keys_[i], i + 1 < keys_.size() ? &keys_[i + 1] : nullptr};
  }

  std::span<const Key> keys_;
  bool weighted_;
  double frames_per_second_;
  CurveSegments made_;
};

}  // namespace

CurveSegments build_segments(std::span<const Key> keys, bool weighted, double frames_per_second) {
  return Builder(keys, weighted, frames_per_second).build();
}

}  // namespace vantorelix::standalone
