#include "standalone/scene/curves/key_tangents.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "standalone/scene/curves/tangents.h"

namespace vantorelix::standalone {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TangentVector along(double slope, const Key& key, const Key* neighbour, const Key* other) {
  const Key* const reached = neighbour != nullptr ? neighbour : other;
  const double reach = reached == nullptr ? 1.0 : std::abs(reached->time - key.time);
  return {reach, slope * reach};
}

KeyTangents tangents_at(const KeyPlace& place, bool weighted, double rate) {
  const auto& [previous, key, next] = place;
  const bool own_in = weighted && (previous != nullptr || key.in == Tangent::fixed);
  const bool own_out = weighted && (next != nullptr || key.out == Tangent::fixed);
  const TangentVector in = own_in ? in_vector(place, rate) : along(in_slope(place, rate), key, previous, next);
  const TangentVector out = own_out ? out_vector(place, rate) : along(out_slope(place, rate), key, next, previous);
  const auto level = [](double y) { return std::isfinite(y) ? y : 0.0; };
  return {std::max(in.x, 0.0), level(in.y), std::max(out.x, 0.0), steps(key.out) ? 0.0 : level(out.y)};
}

// Whether an edit is felt on that side however far one goes, where so many keys are on it.
bool felt_far(std::size_t keys, Infinity infinity) {
  return keys == 0 || repeats(infinity) || (keys == 1 && infinity == Infinity::linear);
}

}  // namespace

std::vector<KeyTangents> tangents_of(const AnimCurve& curve) {
  const std::vector<Key>& keys = curve.keys();
  std::vector<KeyTangents> all;
  all.reserve(keys.size());
  for (std::size_t i = 0; i < keys.size(); ++i)
    all.push_back(tangents_at({i > 0 ? &keys[i - 1] : nullptr, keys[i], i + 1 < keys.size() ? &keys[i + 1] : nullptr},
                              curve.weighted(), curve.frames_per_second()));
  return all;
}

void fix_in(Key& key, double x, double y, double frames_per_second) {
  key.in = Tangent::fixed;
  key.in_x = x / frames_per_second;
  key.in_y = y;
}

void fix_out(Key& key, double x, double y, double frames_per_second) {
  key.out = Tangent::fixed;
  key.out_x = x / frames_per_second;
  key.out_y = y;
}

FrameRange felt_around(const AnimCurve& curve, double frame) {
  const std::vector<Key>& keys = curve.keys();
  const auto earlier = [](const Key& key, double time) { return key.time < time; };
  const auto at = std::lower_bound(keys.begin(), keys.end(), frame, earlier);
  const auto before = static_cast<std::size_t>(at - keys.begin());
  const bool there = at != keys.end() && at->time == frame;
  const std::size_t after = keys.size() - before - (there ? 1 : 0);
  const bool far_back = felt_far(before, curve.pre_infinity()), far_on = felt_far(after, curve.post_infinity());
  return {far_back ? -kInfinity : keys[std::max<std::size_t>(before, 2) - 2].time,
          far_on ? kInfinity : keys[keys.size() - std::max<std::size_t>(after, 2) + 1].time};
}

}  // namespace vantorelix::standalone
