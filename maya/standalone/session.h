// One host with the scene that is open in it, as a script sees them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <utility>
#include <vector>

#include "standalone/host/host.h"
#include "standalone/host/undo_queue.h"

namespace vantorelix::standalone {

// What a listener is told, inside the edit. The numbers are part of the C interface.
enum class Event { curve_edited = 0, keyframe_edited = 1, node_removed = 2 };
using Listener = void (*)(std::int32_t event, NodeId node, const char* type);

class Session {
 public:
  explicit Session(HostOptions options) : host_(Scene(), std::move(options)) { begin(); }

  Host& host() { return host_; }
  Scene& scene() { return host_.scene(); }
  UndoQueue& undo_queue() { return undo_queue_; }

  // The one listener, which outlives scenes; null for none.
  void listen(Listener listener) { listener_ = listener; }

  // These leave the scene that is open as it is when they fail. The old scene's nodes are told of as removed, while
  // the host says that it is opening or making a file. Nothing can be undone then. The listener may call them, too.
  void open(const std::filesystem::path& file);
  void make_new();

 private:
  void replace(Scene scene, Host::FileActivity activity);
  void begin();
  void tell(Event event, NodeId node);

  Host host_;
  UndoQueue undo_queue_{host_};
  std::size_t telling_ = 0;
  std::vector<Scene> replaced_;  // scenes replaced by a listener inside an edit, which still uses them until it ends
  Listener listener_ = nullptr;
};

}  // namespace vantorelix::standalone
