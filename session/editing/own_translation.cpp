#include "session/editing/own_translation.h"

#include <cstddef>

#include "standalone/scene/attributes/channel_names.h"

namespace vantorelix::session {

using standalone::Channel;
using standalone::NodeId;
using standalone::Scene;

namespace {

OwnChannel own_channel(const Scene& scene, NodeId object, Channel channel) {
  OwnChannel own{channel};
  for (const standalone::Connection& input : scene.connections.into(object)) {
    if (input.attribute != "translate" && input.attribute != standalone::name_of(channel)) continue;
    if (scene.curves.is_curve(input.source)) {
      own.curve = input.source;
    } else {
      own.driver = input.source;
      own.track = scene.curves.track(input.source) != nullptr;
    }
  }
  return own;
}

}  // namespace

std::array<OwnChannel, 3> translation_of(const Scene& scene, NodeId object) {
  std::array<OwnChannel, 3> channels;
  for (std::size_t k = 0; k < 3; ++k)
    channels[k] = own_channel(scene, object, standalone::component(Channel::translateX, k));
  return channels;
}

std::string text_of(const Scene& scene, NodeId object, Channel channel) {
  return scene.names.unique_name(object) + "." + standalone::name_of(channel);
}

CannotPlace driven(const Scene& scene, NodeId object, const OwnChannel& own) {
  if (own.track)
    return {Obstacle::recorded, "the translation of " + scene.names.unique_name(object) +
                                    " is recorded as a whole, without keys for each channel"};
  return {Obstacle::not_a_curve, text_of(scene, object, own.channel) + " is driven by the " +
                                     scene.nodes.type(own.driver) + " " + scene.names.unique_name(own.driver) +
                                     ", not by keys of its own"};
}

CannotPlace locked(const Scene& scene, NodeId object, Channel channel) {
  return {Obstacle::locked, text_of(scene, object, channel) + " is locked"};
}

}  // namespace vantorelix::session
