#include "standalone/formats/bvh/rigid_motion.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <limits>
#include <numbers>
#include <utility>

#include "standalone/formats/bvh/bvh_channels.h"
#include "standalone/scene/transforms/quaternion.h"

namespace vantorelix::standalone {

namespace {

constexpr double kNear = 1e-9;  // of the size of things

std::size_t axis_of(Channel rotation) {
  return static_cast<std::size_t>(rotation) - static_cast<std::size_t>(Channel::rotateX);
}

// Of the angles that turn the same way, those nearest to the ones before. `middle` is the axis that turns second.
Angles nearest(const Angles& angles, std::size_t middle, const Angles& before) {
  constexpr double kHalf = std::numbers::pi, kTurn = 2.0 * std::numbers::pi;
  Angles best = angles;
  double least = std::numeric_limits<double>::infinity();
  for (const bool other : {false, true}) {
    Angles found = angles;
    double away = 0.0;
    for (std::size_t k = 0; k < 3; ++k) {
      if (other) found[k] = k == middle ? kHalf - found[k] : found[k] + kHalf;
      found[k] += kTurn * std::round((before[k] - found[k]) / kTurn);
      away += std::abs(found[k] - before[k]);
    }
    if (away < least) best = found;
    least = std::min(least, away);
  }
  return best;
}

bool stays(const std::vector<double>& values, double near) {
  const auto [least, most] = std::minmax_element(values.begin(), values.end());
  return *most - *least <= near;
}

}  // namespace

const std::vector<RigidFrame>& RigidMotion::frames_of(NodeId node) {
  std::vector<RigidFrame>& frames = frames_[node];
  for (std::size_t row = frames.size(); row < rows_.count; ++row)
    frames.push_back(rigid_frame_of(scene_.evaluation.world_matrix(node, rows_.frame(row))));
  return frames;
}

bool RigidMotion::work_out(BvhJoint& joint) {
  const double order = scene_.evaluation.channel_at(joint.node, Channel::rotateOrder, rows_.first);
  const std::array<Channel, 3> rotations = rotations_in(order);
  const std::vector<RigidFrame>& world = frames_of(joint.node);
  std::array<std::vector<double>, 3> places, angles;
  Angles turned{};
  double size = 0.0;
  for (std::size_t row = 0; row < rows_.count; ++row) {
    const RigidFrame own = joint.above == kWorld ? world[row] : relative_to(frames_of(joint.above)[row], world[row]);
    turned = nearest(angles_of(own.rotation, order), axis_of(rotations[1]), turned);
    const std::array<double, 3> place = {own.place.x, own.place.y, own.place.z};
    for (std::size_t k = 0; k < 3; ++k) {
      places[k].push_back(place[k]);
      angles[k].push_back(turned[k]);
      size = std::max(size, std::abs(place[k]));
    }
  }
  const bool stands = std::all_of(places.begin(), places.end(),
                                  [size](const std::vector<double>& values) { return stays(values, kNear * size); });
  for (std::size_t k = 0; k < 3; ++k) {
    joint.offset[k] = places[k].front();
    if (joint.depth == 0 || !stands) joint.columns.push_back({component(Channel::translateX, k), std::move(places[k])});
  }
  if (!joint.is_end_site)
    for (const Channel channel : rotations) joint.columns.push_back({channel, std::move(angles[axis_of(channel)])});
  return std::all_of(world.begin(), world.end(), [](const RigidFrame& frame) { return frame.is_whole; });
}

}  // namespace vantorelix::standalone
