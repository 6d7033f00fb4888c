#include "standalone/formats/gltf_rotation.h"

#include <algorithm>
#include <utility>

namespace vantorelix::standalone {
namespace {

Quaternion of_length_one(Quaternion q) {
  normalise(q);
  return q;
}

}  // namespace

GltfRotation::GltfRotation(std::vector<double> times, std::vector<Key> keys, GltfInterpolation interpolation,
                           double frames_per_second)
    : times_(std::move(times)),
      keys_(std::move(keys)),
      interpolation_(interpolation),
      frames_per_second_(frames_per_second) {
  if (interpolation_ != GltfInterpolation::cubic_spline) {
    for (Key& key : keys_) normalise(key.value);
  }
  moves_ = find_motion();
}

bool GltfRotation::find_motion() const {
  const Key& first = keys_.front();
  for (const Key& key : keys_) {
    if (key.value != first.value) return true;
    if (keys_.size() > 1 && interpolation_ == GltfInterpolation::cubic_spline &&
        (key.in != Quaternion{} || key.out != Quaternion{})) {
      return true;
    }
  }
  return false;
}

std::array<double, 3> GltfRotation::at(double frame) const {
  const auto next = std::upper_bound(times_.begin(), times_.end(), frame);
  const std::size_t key = next == times_.begin() ? 0 : static_cast<std::size_t>(next - times_.begin()) - 1;
  const bool inside = next != times_.begin() && next != times_.end() && frame != times_[key];
  return angles_of(basis_of(inside ? between(key, frame) : of_length_one(keys_[key].value)), 0);
}

Quaternion GltfRotation::between(std::size_t key, double frame) const {
  const Key &from = keys_[key], &to = keys_[key + 1];
  const double length = times_[key + 1] - times_[key];
  const double t = (frame - times_[key]) / length;
  if (interpolation_ == GltfInterpolation::step) return from.value;
  if (interpolation_ == GltfInterpolation::linear) return slerp(from.value, to.value, t);
  const double seconds = length / frames_per_second_;
  const double leave = seconds * ((t - 2.0) * t + 1.0) * t, arrive = seconds * (t - 1.0) * t * t;
  const double take = (3.0 - 2.0 * t) * t * t;
  Quaternion q;
  for (std::size_t i = 0; i < 4; ++i) {
    q[i] = (1.0 - take) * from.value[i] + leave * from.out[i] + take * to.value[i] + arrive * to.in[i];
  }
  // A spline may pass through nothing, where it has no direction.
  return normalise(q) ? q : slerp(of_length_one(from.value), of_length_one(to.value), t);
}

}  // namespace vantorelix::standalone
