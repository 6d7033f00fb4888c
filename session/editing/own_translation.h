// The channels of an object's translation, and what drives each.
#pragma once

#include <array>
#include <string>

#include "session/editing/obstacle.h"
#include "standalone/scene/scene.h"

namespace vantorelix::session {

struct OwnChannel {
  standalone::Channel channel;
  standalone::NodeId curve = standalone::kNoNode;   // its own, kNoNode where there is none
  standalone::NodeId driver = standalone::kNoNode;  // what else drives it
  bool track = false;                               // which is a track
};

// X, Y, Z.
std::array<OwnChannel, 3> translation_of(const standalone::Scene& scene, standalone::NodeId object);

// For people, as "ball.translateX".
std::string text_of(const standalone::Scene& scene, standalone::NodeId object, standalone::Channel channel);

// Why something cannot be done with a channel that is driven by something else than a curve, or that is locked.
CannotPlace driven(const standalone::Scene& scene, standalone::NodeId object, const OwnChannel& own);
CannotPlace locked(const standalone::Scene& scene, standalone::NodeId object, standalone::Channel channel);

}  // namespace vantorelix::session
