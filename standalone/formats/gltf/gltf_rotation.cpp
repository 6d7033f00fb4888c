#include "standalone/formats/gltf/gltf_rotation.h"

#include <algorithm>
#include <utility>

namespace vantorelix::standalone {
namespace {

Quaternion of_length_one(Quaternion q) {
  normalise(q);
  return q;
}

}  // namespace

GltfRotation::GltfRotation(Keys keys, GltfInterpolation interpolation, double frames_per_second)
    : keys_(std::move(keys)), interpolation_(interpolation), frames_per_second_(frames_per_second) {}

bool GltfRotation::moves() const {
  const auto turns = [](const Tangents& key) { return key.in != Quaternion{} || key.out != Quaternion{}; };
  if (keys_.values.size() > 1 && std::any_of(keys_.tangents.begin(), keys_.tangents.end(), turns)) return true;
  const Quaternion first = value(0);
  for (std::size_t key = 1; key < keys_.values.size(); ++key)
    if (value(key) != first) return true;
  return false;
}

Quaternion GltfRotation::value(std::size_t key) const {
  const Quaternion& given = keys_.values[key];
  return interpolation_ == GltfInterpolation::cubic_spline ? given : of_length_one(given);
}

std::array<double, 3> GltfRotation::at(double frame) const {
  const std::vector<double>& times = keys_.times;
  const auto next = std::upper_bound(times.begin(), times.end(), frame);
  const std::size_t key = next == times.begin() ? 0 : static_cast<std::size_t>(next - times.begin()) - 1;
  const bool inside = next != times.begin() && next != times.end() && frame != times[key];
  return angles_of(basis_of(inside ? between(key, frame) : of_length_one(value(key))), 0);
}

Quaternion GltfRotation::between(std::size_t key, double frame) const {
  const Quaternion from = value(key), to = value(key + 1);
  const double length = keys_.times[key + 1] - keys_.times[key];
  const double t = (frame - keys_.times[key]) / length;
  if (interpolation_ == GltfInterpolation::step) return from;
  if (interpolation_ == GltfInterpolation::linear) return slerp(from, to, t);
  const Quaternion &out = keys_.tangents[key].out, &in = keys_.tangents[key + 1].in;
  const double seconds = length / frames_per_second_;
  const double leave = seconds * ((t - 2.0) * t + 1.0) * t, arrive = seconds * (t - 1.0) * t * t;
  const double take = (3.0 - 2.0 * t) * t * t;
  Quaternion q;
  for (std::size_t i = 0; i < 4; ++i) q[i] = (1.0 - take) * from[i] + leave * out[i] + take * to[i] + arrive * in[i];
  // A spline may pass through nothing, where it has no direction.
  return normalise(q) ? q : slerp(of_length_one(from), of_length_one(to), t);
}

}  // namespace vantorelix::standalone
