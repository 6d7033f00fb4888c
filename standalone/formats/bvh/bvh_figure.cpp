#include "standalone/formats/bvh/bvh_figure.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <sstream>
#include <unordered_map>
#include <utility>

#include "base/number_text.h"
#include "standalone/formats/bvh/bvh_channels.h"
#include "standalone/formats/bvh/rigid_motion.h"
#include "standalone/formats/writer.h"
#include "standalone/scene/attributes/channel_names.h"

namespace vantorelix::standalone {

namespace {

// What the channels of a transform besides the six of a clip have to be for it to be no more than these.
double plain_value(Channel channel) {
  const bool one = (channel >= Channel::scaleX && channel <= Channel::scaleZ) ||
                   (channel >= Channel::inverseScaleX && channel <= Channel::inverseScaleZ) ||
                   channel == Channel::inheritsTransform;
  return one ? 1.0 : 0.0;
}

class Filling {
 public:
  Filling(const Scene& scene, const BvhRows& rows, BvhLosses& losses)
      : scene_(scene), rows_(rows), losses_(losses), motion_(scene, rows) {}

  void fill(BvhJoint& joint) {
    if (is_plain(joint.node)) {
      take_channels(joint);
    } else {
      joint.is_worked_out = true;
      losses_.worked_out.add(scene_.names.unique_name(joint.node));
      if (!motion_.work_out(joint)) losses_.scaled.add(scene_.names.unique_name(joint.node));
    }
    for (const BvhColumn& column : joint.columns)
      for (std::size_t row = 0; row < rows_.count; ++row)
        if (!std::isfinite(column.values[row]))
          throw CannotWrite(scene_.names.unique_name(joint.node) + " is nowhere at frame " +
                            number_text(rows_.frame(row)));
    joint.is_end_site = joint.is_end_site && joint.columns.empty();
  }

 private:
  double at(NodeId node, Channel channel, std::size_t row) const {
    return scene_.evaluation.channel_at(node, channel, rows_.frame(row));
  }

  // Whether a channel has this value in every row.
  bool stays(NodeId node, Channel channel, double value) const {
    if (!is_driven(node, channel)) return scene_.attributes.channel(node, channel) == value;
    for (std::size_t row = 0; row < rows_.count; ++row)
      if (at(node, channel, row) != value) return false;
    return true;
  }

  bool is_driven(NodeId node, Channel channel) const {
    const std::vector<Connection> inputs = scene_.connections.into(node);
    return std::any_of(inputs.begin(), inputs.end(), [channel](const Connection& input) {
      const auto named = channels_named(input.attribute);
      return named && channel >= named->first && channel < component(named->first, named->count);
    });
  }

  // Whether the node's six channels are all there is to it, and to what it hangs on, as in a clip.
  bool is_plain(NodeId node) {
    const auto known = plain_.find(node);
    if (known != plain_.end()) return known->second;
    const NodeId parent = scene_.nodes.parent(node);
    const bool joint_above =
        parent == kWorld || scene_.nodes.type(parent) == "joint" || is_bvh_end_site(scene_, parent);
    const bool plain = joint_above && (parent == kWorld || is_plain(parent)) && has_plain_channels(node) &&
                       !has_offset_parent_matrix(node);
    plain_.emplace(node, plain);
    return plain;
  }

  bool has_plain_channels(NodeId node) const {
    const bool joint = scene_.nodes.type(node) == "joint";
    for (std::size_t k = kBvhChannelCount; k < static_cast<std::size_t>(Channel::count); ++k) {
      const Channel channel = component(Channel::translateX, k);
      if (channel == Channel::segmentScaleCompensate) continue;  // of no account without scale
      if (!joint && channels_named(name_of(channel), false) == std::nullopt) continue;
      const double value = channel == Channel::rotateOrder ? at(node, channel, 0) : plain_value(channel);
      if (!stays(node, channel, value)) return false;
    }
    return true;
  }

  bool has_offset_parent_matrix(NodeId node) const {
    const std::vector<Connection> inputs = scene_.connections.into(node);
    if (std::any_of(inputs.begin(), inputs.end(),
                    [](const Connection& input) { return input.attribute == "offsetParentMatrix"; }))
      return true;
    const NodeId parent = scene_.nodes.parent(node);
    const double frame = rows_.frame(0);
    const Affine above = parent == kWorld ? Affine() : scene_.evaluation.world_matrix(parent, frame);
    return !(scene_.evaluation.matrix_above(node, frame) == above);
  }

  void take_channels(BvhJoint& joint) {
    for (std::size_t k = 0; k < 3; ++k)
      joint.offset[k] = scene_.attributes.channel(joint.node, component(Channel::translateX, k));
    for (const Channel channel : channels_of(joint)) {
      BvhColumn& column = joint.columns.emplace_back(BvhColumn{channel, {}});
      column.values.reserve(rows_.count);
      for (std::size_t row = 0; row < rows_.count; ++row) column.values.push_back(at(joint.node, channel, row));
      tell_between(joint.node, column);
    }
  }

  // As the clip listed them, with those that have come to be needed; for joints of other scenes what is usual.
  std::vector<Channel> channels_of(const BvhJoint& joint) const {
    std::vector<Channel> listed, places;
    const bool from_clip = scene_.attributes.has(joint.node, kChannelsInFile);
    if (from_clip) {
      std::istringstream words(scene_.attributes.value(joint.node, kChannelsInFile).text());
      for (std::string word; words >> word;)
        if (const auto channel = bvh_channel_named(word)) listed.push_back(*channel);
    }
    const bool usual = !from_clip && !joint.is_end_site;
    const auto is_missing = [&](Channel channel, double rest, bool always) {
      if (std::find(listed.begin(), listed.end(), channel) != listed.end()) return false;
      return always || !stays(joint.node, channel, rest);
    };
    for (std::size_t k = 0; k < 3; ++k)
      if (is_missing(component(Channel::translateX, k), joint.offset[k], usual && joint.depth == 0))
        places.push_back(component(Channel::translateX, k));
    const auto rotations = rotations_in(at(joint.node, Channel::rotateOrder, 0));
    if (std::any_of(rotations.begin(), rotations.end(),
                    [&](Channel channel) { return is_missing(channel, 0.0, usual); })) {
      listed.erase(std::remove_if(listed.begin(), listed.end(), is_rotation), listed.end());
      listed.insert(listed.end(), rotations.begin(), rotations.end());
    }
    listed.insert(listed.begin(), places.begin(), places.end());
    return listed;
  }

  void tell_between(NodeId node, const BvhColumn& column) {
    const std::string plug = scene_.names.unique_name(node) + "." + name_of(column.channel);
    if (!is_straight(node, column)) losses_.bent.add(plug);
    const NodeId driving = scene_.curves.driving_curve(node, column.channel);
    if (driving == kNoNode) return;
    const AnimCurve& curve = scene_.curves.at(driving);
    const std::vector<Key>& keys = curve.keys();
    const bool outside =
        !keys.empty() && (keys.front().time < rows_.first || keys.back().time > rows_.frame(rows_.count - 1));
    const bool goes_on = curve.pre_infinity() != Infinity::constant || curve.post_infinity() != Infinity::constant;
    if (outside || (goes_on && !curve.is_constant())) losses_.beyond.add(plug);
  }

  bool is_straight(NodeId node, const BvhColumn& column) const {
    for (std::size_t row = 0; row + 1 < rows_.count; ++row) {
      const double from = column.values[row], to = column.values[row + 1];
      const double near = 1e-9 * std::max({1.0, std::abs(from), std::abs(to)});
      for (const double part : {0.25, 0.5}) {
        const double here = scene_.evaluation.channel_at(node, column.channel, rows_.frame(row) + part);
        if (!(std::abs(here - (from + part * (to - from))) <= near)) return false;
      }
    }
    return true;
  }

  const Scene& scene_;
  BvhRows rows_;
  BvhLosses& losses_;
  RigidMotion motion_;
  std::unordered_map<NodeId, bool> plain_;
};

}  // namespace

void fill_bvh_joints(const Scene& scene, const BvhRows& rows, std::vector<BvhJoint>& joints, BvhLosses& losses) {
  Filling filling(scene, rows, losses);
  for (BvhJoint& joint : joints) filling.fill(joint);
}

}  // namespace vantorelix::standalone
