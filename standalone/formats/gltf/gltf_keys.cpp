#include "standalone/formats/gltf/gltf_keys.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "standalone/formats/writer.h"
#include "standalone/scene/curves/key_insertion.h"
#include "standalone/scene/curves/key_tangents.h"

namespace vantorelix::standalone {

namespace {

// Keys to insert times keys that are there: beyond it inserting one by one takes too long.
constexpr std::size_t kMaxInsertion = 100'000'000;
constexpr std::size_t kMaxKeys = std::size_t{1} << 24;

float rounded(double number, GltfKeyLosses& losses) {
  const float near = static_cast<float>(number);
  if (!std::isfinite(near)) throw CannotWrite("a number is larger than glTF's 32 bits can hold");
  const double off = std::abs(static_cast<double>(near) - number);
  losses.rounded = losses.rounded || off > 1e-13 * std::abs(number);
  return near;
}

bool is_linear(const Key& left, const Key& right) { return left.out == Tangent::linear && right.in == Tangent::linear; }

void sort_and_unite(std::vector<double>& times) {
  std::sort(times.begin(), times.end());
  times.erase(std::unique(times.begin(), times.end()), times.end());
}

class Axes {
 public:
  Axes(const std::array<GltfAxis, 3>& axes, double rate, GltfKeyLosses& losses) : rate_(rate), losses_(losses) {
    for (const GltfAxis& axis : axes) {
      curves_.push_back(axis.curve != nullptr ? *axis.curve : AnimCurve(CurveKind::linear, rate));
      if (curves_.back().keys().empty()) curves_.back().set_key(0.0, axis.value);
      if (axis.curve == nullptr || axis.curve->keys().empty()) continue;
      for (const Key& key : axis.curve->keys()) times_.push_back(key.time);
    }
    if (times_.empty()) times_.push_back(0.0);
    sort_and_unite(times_);
  }

  GltfKeys keys() {
    end_before_start();
    take_weights();
    if (is_mixed()) add_times_of_steps();
    if (times_.size() > kMaxKeys)
      throw CannotWrite("one channel has more than 16777216 keys, which is too much for glTF");
    for (AnimCurve& curve : curves_) give_all_keys(curve);
    return with_interpolation(all_step() ? "STEP" : all_linear() ? "LINEAR" : "CUBICSPLINE");
  }

 private:
  void end_before_start() {
    const auto start = std::lower_bound(times_.begin(), times_.end(), 0.0);
    if (start == times_.begin()) return;
    losses_.before_start = true;
    times_.erase(times_.begin(), start);
    times_.insert(times_.begin(), 0.0);
    sort_and_unite(times_);
  }

  // A curve whose tangents have weights, or that repeats where another one has keys, is straight from frame to frame.
  void take_weights() {
    std::vector<double> more;
    for (AnimCurve& curve : curves_) {
      if (curve.is_constant()) continue;
      const std::vector<Key>& keys = curve.keys();
      const bool ends = curve.pre_infinity() == Infinity::constant && curve.post_infinity() == Infinity::constant;
      losses_.goes_on = losses_.goes_on || !ends;
      const bool outside = times_.front() < keys.front().time || times_.back() > keys.back().time;
      if (!curve.weighted() && (ends || !outside)) continue;
      losses_.divided = true;
      divided_.push_back(&curve);
      if (times_.back() - times_.front() > static_cast<double>(kMaxKeys))
        throw CannotWrite("one channel has more than 16777216 frames, which is too much for glTF");
      for (double frame = std::ceil(times_.front()); frame < times_.back(); ++frame) more.push_back(frame);
    }
    times_.insert(times_.end(), more.begin(), more.end());
    sort_and_unite(times_);
  }

  // Whether steps go beside what does not step, or take the next value at once, which glTF does not have.
  bool is_mixed() const {
    bool step = false, other = false, next = false;
    for (const AnimCurve& curve : curves_) {
      if (curve.is_constant()) continue;
      const std::vector<Key>& keys = curve.keys();
      const bool divided = is_divided(curve);
      other = other || times_.front() < keys.front().time || keys.back().time < times_.back();
      for (std::size_t i = 0; i + 1 < keys.size(); ++i) {
        step = step || (!divided && keys[i].out == Tangent::step);
        next = next || (!divided && keys[i].out == Tangent::step_next);
        other = other || divided || !steps(keys[i].out);
      }
    }
    return next || (step && other);
  }

  // A step is a spline that stands until the last time before the next key, or from the first one after its own.
  void add_times_of_steps() {
    constexpr float kFar = std::numeric_limits<float>::infinity();
    std::vector<double> more;
    for (const AnimCurve& curve : curves_) {
      if (curve.is_constant() || is_divided(curve)) continue;
      const std::vector<Key>& keys = curve.keys();
      for (std::size_t i = 0; i + 1 < keys.size(); ++i) {
        if (!steps(keys[i].out) || keys[i + 1].time <= 0.0) continue;
        const bool at_once = keys[i].out == Tangent::step_next;
        const double edge = (at_once ? std::max(0.0, keys[i].time) : keys[i + 1].time) / rate_;
        const float beside = std::nextafter(static_cast<float>(edge), at_once ? kFar : -kFar);
        const double frame = static_cast<double>(beside) * rate_;
        if (frame > keys[i].time && frame < keys[i + 1].time && frame > 0.0) more.push_back(frame);
      }
    }
    times_.insert(times_.end(), more.begin(), more.end());
    sort_and_unite(times_);
  }

  bool is_divided(const AnimCurve& curve) const {
    return std::find(divided_.begin(), divided_.end(), &curve) != divided_.end();
  }

  // A key at each of the times and at no other.
  void give_all_keys(AnimCurve& curve) {
    std::vector<double> missing;
    for (const double time : times_)
      if (curve.key_at(time) == nullptr) missing.push_back(time);
    const bool too_many = missing.size() > kMaxInsertion / (curve.keys().size() + missing.size());
    if (curve.is_constant() || is_divided(curve) || too_many) {
      losses_.divided = losses_.divided || (too_many && !curve.is_constant());
      std::vector<Key> straight;
      for (const double time : times_)
        straight.push_back({time, curve.evaluate(time), Tangent::linear, Tangent::linear});
      curve.assign(std::move(straight), false, Infinity::constant, Infinity::constant);
      return;
    }
    for (const double time : missing)
      curve.assign(with_key_inserted(curve, time), false, curve.pre_infinity(), curve.post_infinity());
    std::vector<Key> kept = curve.keys();
    const auto early = [&](const Key& key) { return key.time < times_.front(); };
    kept.erase(kept.begin(), std::find_if_not(kept.begin(), kept.end(), early));
    curve.assign(std::move(kept), false, Infinity::constant, Infinity::constant);
  }

  template <class Is>
  bool all_pieces(const Is& is) const {
    return std::all_of(curves_.begin(), curves_.end(), [&](const AnimCurve& curve) {
      const std::vector<Key>& keys = curve.keys();
      for (std::size_t i = 0; i + 1 < keys.size(); ++i)
        if (!curve.is_constant() && !is(keys[i], keys[i + 1])) return false;
      return true;
    });
  }
  bool all_step() const {
    return !std::all_of(curves_.begin(), curves_.end(), [](const AnimCurve& curve) { return curve.is_constant(); }) &&
           all_pieces([](const Key& left, const Key&) { return left.out == Tangent::step; });
  }
  bool all_linear() const { return all_pieces(is_linear); }

  GltfKeys with_interpolation(const char* name) {
    GltfKeys made = {name, {}, {}};
    const bool spline = made.interpolation == "CUBICSPLINE";
    std::array<std::vector<KeyTangents>, 3> tangents;
    for (std::size_t k = 0; spline && k < 3; ++k) tangents[k] = tangents_of(curves_[k]);
    for (std::size_t i = 0; i < times_.size(); ++i) {
      const float time = rounded(times_[i] / rate_, losses_);
      const std::size_t width = spline ? 9 : 3;
      if (!made.times.empty() && time <= made.times.back()) {
        losses_.dropped = true;
        made.values.resize(made.values.size() - width);
      } else {
        made.times.push_back(time);
      }
      if (spline)
        for (std::size_t k = 0; k < 3; ++k)
          put_slope(made, tangents[k][i].in_x, is_after_step(curves_[k], i) ? 0.0 : tangents[k][i].in_y);
      for (const AnimCurve& curve : curves_) made.values.push_back(rounded(curve.keys()[i].value, losses_));
      if (spline)
        for (const auto& along : tangents) put_slope(made, along[i].out_x, along[i].out_y);
    }
    return made;
  }

  static bool is_after_step(const AnimCurve& curve, std::size_t key) {
    return key > 0 && steps(curve.keys()[key - 1].out);
  }

  void put_slope(GltfKeys& made, double x, double y) {
    made.values.push_back(rounded(x > 0.0 ? y / x * rate_ : 0.0, losses_));
  }

  double rate_;
  GltfKeyLosses& losses_;
  std::vector<AnimCurve> curves_;
  std::vector<const AnimCurve*> divided_;
  std::vector<double> times_;
};

}  // namespace

GltfKeys gltf_keys_of(const std::array<GltfAxis, 3>& axes, double frames_per_second, GltfKeyLosses& losses) {
  return Axes(axes, frames_per_second, losses).keys();
}

GltfKeys gltf_keys_of(const std::vector<double>& frames, const std::vector<Quaternion>& rotations,
                      double frames_per_second, GltfKeyLosses& losses) {
  GltfKeys made = {"LINEAR", {}, {}};
  Quaternion before{};
  for (std::size_t i = 0; i < frames.size(); ++i) {
    const float time = rounded(frames[i] / frames_per_second, losses);
    if (!made.times.empty() && time <= made.times.back()) continue;
    const double sign = dot(before, rotations[i]) < 0.0 ? -1.0 : 1.0;
    made.times.push_back(time);
    for (std::size_t k = 0; k < 4; ++k) {
      before[k] = sign * rotations[i][k];
      made.values.push_back(rounded(before[k], losses));
    }
  }
  return made;
}

}  // namespace vantorelix::standalone
