#include "standalone/scene/curves/key_insertion.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "base/number_text.h"
#include "host/error.h"
#include "standalone/scene/curves/key_tangents.h"
#include "standalone/scene/curves/weighted_segment.h"

namespace vantorelix::standalone {

namespace {

class Insertion {
 public:
  Insertion(const AnimCurve& curve, double frame)
      : curve_(curve), rate_(curve.frames_per_second()), keys_(curve.keys()), made_{.time = frame} {
    const auto earlier = [](const Key& key, double time) { return key.time < time; };
    at_ = static_cast<std::size_t>(std::lower_bound(keys_.begin(), keys_.end(), frame, earlier) - keys_.begin());
  }

  bool is_there() const { return at_ < keys_.size() && keys_[at_].time == made_.time; }

  std::vector<Key> keys() {
    made_.value = curve_.evaluate(made_.time);
    if (keys_.empty()) return {made_};
    if (at_ == 0 || at_ == keys_.size()) {
      go_on();
    } else if (steps(keys_[at_ - 1].out)) {
      made_.in = Tangent::flat;
      made_.out = keys_[at_ - 1].out;
    } else if (keys_[at_ - 1].out == Tangent::linear && keys_[at_].in == Tangent::linear) {
      made_.in = made_.out = Tangent::linear;
    } else {
      divide();
    }
    keep_neighbours();
    return std::move(keys_);
  }

 private:
  // Beyond the ends.
  void go_on() {
    const Infinity infinity = at_ == 0 ? curve_.pre_infinity() : curve_.post_infinity();
    if (repeats(infinity))
      throw host::Error("a key at frame " + number_text(made_.time) +
                            " would change what the curve repeats there; insert it among the keys",
                        host::ErrorKind::value);
    Key& end = at_ == 0 ? keys_.front() : keys_.back();
    const double reach = made_.time - end.time, rise = made_.value - end.value;
    const double ahead = std::abs(reach), up = reach > 0.0 ? rise : -rise;
    fix_in(made_, ahead, up, rate_);
    fix_out(made_, ahead, up, rate_);
    if (at_ == 0)
      fix_in(end, ahead, up, rate_);
    else if (!steps(end.out))
      fix_out(end, ahead, up, rate_);
  }

  // Among the keys.
  void divide() {
    const std::vector<KeyTangents> tangents = tangents_of(curve_);
    const KeyTangents &before = tangents[at_ - 1], &after = tangents[at_];
    Key &left = keys_[at_ - 1], &right = keys_[at_];
    const WeightedSegment whole(right.time - left.time, right.value - left.value, {before.out_x, before.out_y},
                                {after.in_x, after.in_y});
    const auto parts = whole.split(made_.time - left.time);
    fix_in(made_, parts.first_in.x, parts.first_in.y, rate_);
    fix_out(made_, parts.second_out.x, parts.second_out.y, rate_);
    fix_out(left, parts.first_out.x, parts.first_out.y, rate_);
    fix_in(right, parts.second_in.x, parts.second_in.y, rate_);
  }

  // Puts the key in its place, and fixes the sides beyond the neighbours where they would turn with it.
  void keep_neighbours() {
    const std::vector<KeyTangents> before = tangents_of(curve_);
    if (at_ > 0) {
      Key& left = keys_[at_ - 1];
      if (turns(left.in, at_ == 1)) fix_in(left, before[at_ - 1].in_x, before[at_ - 1].in_y, rate_);
    }
    if (at_ < keys_.size()) {
      Key& right = keys_[at_];
      if (turns(right.out, at_ + 1 == keys_.size())) fix_out(right, before[at_].out_x, before[at_].out_y, rate_);
    }
    keys_.insert(keys_.begin() + static_cast<std::ptrdiff_t>(at_), made_);
  }

  // Whether a side hangs on the neighbour beyond its key; `alone` where it has none of its own.
  static bool turns(Tangent tangent, bool alone) {
    switch (tangent) {
      case Tangent::fixed:
      case Tangent::flat:
      case Tangent::slow:
      case Tangent::step:
      case Tangent::step_next:
        return false;
      case Tangent::linear:
      case Tangent::fast:
        return alone;
      default:
        return true;
    }
  }

  const AnimCurve& curve_;
  double rate_;
  std::vector<Key> keys_;
  Key made_;
  std::size_t at_;
};

}  // namespace

std::vector<Key> with_key_inserted(const AnimCurve& curve, double frame) {
  Insertion insertion(curve, frame);
  return insertion.is_there() ? curve.keys() : insertion.keys();
}

}  // namespace vantorelix::standalone
