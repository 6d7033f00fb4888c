#include "session/edits.h"

#include <numbers>
#include <utility>

#include "base/number_text.h"
#include "session/failure.h"
#include "standalone/scene/attributes/channel_names.h"

namespace vantorelix::session {

using standalone::Host;
using standalone::NodeId;
using standalone::Scene;

namespace {

// The curve of the channel and its key at the frame, which must be there.
std::pair<NodeId, standalone::Key> existing_key(const LiveEvent& event, const Scene& scene) {
  const NodeId curve = scene.curves.driving_curve(event.node, event.channel);
  const standalone::Key* key = curve == standalone::kNoNode ? nullptr : scene.curves.at(curve).key_at(event.frame);
  if (key == nullptr)
    throw Failure(Failure::Kind::no_such_key, event.where + ": " + scene.names.unique_name(event.node) +
                                                  " has no key of " + standalone::name_of(event.channel) +
                                                  " at frame " + number_text(event.frame));
  return {curve, *key};
}

void set_key(const LiveEvent& event, Scene& scene) {
  const NodeId curve = scene.curves.driving_curve(event.node, event.channel);
  const bool angle = curve == standalone::kNoNode ? standalone::is_angle(event.channel)
                                                  : scene.curves.at(curve).kind() == standalone::CurveKind::angular;
  const double value = angle ? event.value * std::numbers::pi / 180.0 : event.value;
  if (curve == standalone::kNoNode)
    scene.curves.set_key(event.node, event.channel, event.frame, value);
  else
    scene.curves.set_key(curve, event.frame, value);
}

}  // namespace

void apply(const LiveEvent& event, Host& host) {
  Scene& scene = host.scene();
  switch (event.kind) {
    case LiveEvent::Kind::set_key:
      set_key(event, scene);
      break;
    case LiveEvent::Kind::move_key: {
      auto [curve, key] = existing_key(event, scene);
      if (event.to == event.frame) break;
      // The new key first: the last key of a curve takes the curve with it.
      key.time = event.to;
      scene.curves.set_key(curve, key);
      scene.curves.remove_key(curve, event.frame);
      break;
    }
    case LiveEvent::Kind::remove_key:
      scene.curves.remove_key(existing_key(event, scene).first, event.frame);
      break;
    case LiveEvent::Kind::playing:
      host.set_playing(event.playing);
      break;
    case LiveEvent::Kind::file:
      host.set_file_activity(event.file);
      break;
  }
}

}  // namespace vantorelix::session
