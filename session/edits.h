// Timed edits of a scene, and what else happens in its host.
#pragma once

#include <string>

#include "standalone/host/host.h"

namespace vantorelix::session {

// One thing that happens at a time: seconds from the start.
struct LiveEvent {
  enum class Kind { set_key, move_key, remove_key, playing, file };

  double at = 0.0;
  Kind kind = Kind::set_key;
  std::string where;                              // "edits[2]", for messages
  standalone::NodeId node = standalone::kNoNode;  // the keyed object and its channel
  standalone::Channel channel = standalone::Channel::translateX;
  double frame = 0.0;
  double value = 0.0;  // set_key: degrees on angles
  double to = 0.0;     // move_key: frame
  bool playing = false;
  standalone::Host::FileActivity file = standalone::Host::FileActivity::none;

  bool is_edit() const { return kind != Kind::playing && kind != Kind::file; }
};

// Does it. Throws Failure when there is no key to move or remove.
void apply(const LiveEvent& event, standalone::Host& host);

}  // namespace vantorelix::session
