#include "standalone/formats/fbx/fbx_curve.h"

#include <ufbx.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>
#include <utility>

namespace vantorelix::standalone {
namespace {

// Handles are stored in single precision, and what the library calls a third is 0.333333.
constexpr double kHandleRounding = 2e-6;

// Whether a handle reaches a third of its span, so that time passes evenly along it.
bool is_even(double reach, double length) { return std::abs(3.0 * reach - length) <= kHandleRounding * length; }

Infinity infinity_of(const ufbx_extrapolation& extrapolation) {
  if (extrapolation.repeat_count == 0 && extrapolation.mode != UFBX_EXTRAPOLATION_SLOPE) return Infinity::constant;
  switch (extrapolation.mode) {
    case UFBX_EXTRAPOLATION_REPEAT:
      return Infinity::cycle;
    case UFBX_EXTRAPOLATION_MIRROR:
      return Infinity::oscillate;
    case UFBX_EXTRAPOLATION_SLOPE:
      return Infinity::linear;
    case UFBX_EXTRAPOLATION_REPEAT_RELATIVE:
      return Infinity::cycle_offset;
    default:
      return Infinity::constant;
  }
}

class Converter {
 public:
  Converter(const ufbx_anim_curve& curve, const FbxClock& clock, double unit)
      : from_(curve.keyframes.data), count_(curve.keyframes.count), clock_(clock), unit_(unit) {
    made_.pre = infinity_of(curve.pre_extrapolation);
    made_.post = infinity_of(curve.post_extrapolation);
  }

  FbxCurve convert() {
    for (std::size_t i = 0; i + 1 < count_; ++i) {
      const double length = from_[i + 1].time - from_[i].time;
      const bool even = is_even(from_[i].right.dx, length) && is_even(from_[i + 1].left.dx, length);
      made_.weighted |= from_[i].interpolation == UFBX_INTERPOLATION_CUBIC && !even;
    }
    made_.keys.resize(count_);
    for (std::size_t i = 0; i < count_; ++i) set_key(i, made_.keys[i]);
    // Of keys at one time the last gives the value from there on, the first the value that leads there: move it
    // earlier.
    for (std::size_t i = count_; i-- > 1;) {
      if (made_.keys[i - 1].time == made_.keys[i].time)
        made_.keys[i - 1].time = std::nextafter(made_.keys[i].time, -INFINITY);
    }
    return std::move(made_);
  }

 private:
  void set_key(std::size_t i, Key& key) const {
    const ufbx_keyframe& from = from_[i];
    key.time = clock_.frame(from.time);
    key.value = from.value * unit_;
    // Beyond an end the curve may go on straight, along the tangent of the key's other side: that is fixed, too.
    key.in = i > 0 ? tangent(from_[i - 1].interpolation) : Tangent::fixed;
    if (key.in == Tangent::step || key.in == Tangent::step_next) key.in = Tangent::fixed;
    key.out = i + 1 < count_ ? tangent(from.interpolation) : Tangent::fixed;
    set_handle(i > 0 ? from.left : from.right, i > 0 ? from.time - from_[i - 1].time : 0.0, key.in_x, key.in_y);
    set_handle(i + 1 < count_ ? from.right : from.left, i + 1 < count_ ? from_[i + 1].time - from.time : 0.0, key.out_x,
               key.out_y);
  }

  static Tangent tangent(ufbx_interpolation interpolation) {
    switch (interpolation) {
      case UFBX_INTERPOLATION_CONSTANT_PREV:
        return Tangent::step;
      case UFBX_INTERPOLATION_CONSTANT_NEXT:
        return Tangent::step_next;
      case UFBX_INTERPOLATION_LINEAR:
        return Tangent::linear;
      default:
        return Tangent::fixed;
    }
  }

  // `length` of the span on the handle's side, 0 beyond the ends.
  void set_handle(const ufbx_tangent& handle, double length, double& x, double& y) const {
    const bool even = !made_.weighted || (length > 0.0 && is_even(handle.dx, length));
    const double span = made_.weighted ? length : 1.0;
    const double reach = even ? span : 3.0 * handle.dx;
    const bool rises = handle.dx > 0.0f;
    x = rises ? reach : 0.0;
    y = (rises && even ? reach / handle.dx : 3.0) * handle.dy * unit_;
  }

  const ufbx_keyframe* from_;
  std::size_t count_;
  const FbxClock& clock_;
  double unit_;
  FbxCurve made_;
};

class LibraryTrack : public Track {
 public:
  LibraryTrack(FbxDocument document, FbxProperty property, const std::vector<const ufbx_anim_curve*>& curves)
      : document_(std::move(document)), property_(std::move(property)), clock_(*document_) {
    for (const ufbx_anim_curve* curve : curves) {
      for (const ufbx_keyframe& key : curve->keyframes) key_times_.push_back(clock_.frame(key.time));
      moves_ |= curve->min_value != curve->max_value || curve->keyframes.count > 1;
    }
    std::sort(key_times_.begin(), key_times_.end());
    key_times_.erase(std::unique(key_times_.begin(), key_times_.end()), key_times_.end());
  }

  std::array<double, 3> at(double frame) const override {
    // Each component is asked for on its own.
    if (frame != last_frame_) {
      last_values_ = evaluate(frame);
      last_frame_ = frame;
    }
    return last_values_;
  }
  const std::vector<double>& key_times() const override { return key_times_; }
  bool moves() const override { return moves_; }

 private:
  std::array<double, 3> evaluate(double frame) const {
    const double seconds = clock_.seconds(frame);
    std::array<double, 3> values = {property_.unit, property_.unit, property_.unit};
    for (const ufbx_node* node : property_.nodes) {
      const ufbx_prop found =
          ufbx_evaluate_prop_len(property_.anim, &node->element, property_.name, name_length_, seconds);
      // What a file leaves out is at rest.
      if ((found.flags & UFBX_PROP_FLAG_NOT_FOUND) != 0) continue;
      const ufbx_vec3 v = found.value_vec3;
      values = {values[0] * v.x, values[1] * v.y, values[2] * v.z};
    }
    for (std::size_t k = 0; k < values.size(); ++k)
      if (!std::isfinite(values[k])) values[k] = property_.otherwise[k];
    return values;
  }

  FbxDocument document_;
  FbxProperty property_;
  FbxClock clock_;
  std::size_t name_length_ = std::string_view(property_.name).size();
  std::vector<double> key_times_;
  bool moves_ = false;
  mutable double last_frame_ = std::numeric_limits<double>::quiet_NaN();
  mutable std::array<double, 3> last_values_{};
};

}  // namespace

FbxCurve convert_curve(const ufbx_anim_curve& curve, const FbxClock& clock, double unit) {
  return Converter(curve, clock, unit).convert();
}

bool is_convertible(const ufbx_anim_curve& curve) {
  const auto stops = [](const ufbx_extrapolation& e) {
    return e.repeat_count > 0 && e.mode != UFBX_EXTRAPOLATION_CONSTANT && e.mode != UFBX_EXTRAPOLATION_SLOPE;
  };
  return curve.keyframes.count < 2 || !(stops(curve.pre_extrapolation) || stops(curve.post_extrapolation));
}

std::shared_ptr<const Track> make_fbx_track(FbxDocument document, FbxProperty property,
                                            const std::vector<const ufbx_anim_curve*>& curves) {
  return std::make_shared<LibraryTrack>(std::move(document), std::move(property), curves);
}

}  // namespace vantorelix::standalone
