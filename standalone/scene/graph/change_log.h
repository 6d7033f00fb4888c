// What was done to a scene while it was recorded, and undoing it.
//
//   ChangeLog log;
//   scene.changes.record(&log);
//   ...                              edits
//   scene.changes.record(nullptr);
//   scene.changes.undo(log);         the scene is as it was before
//   scene.changes.redo(log);         ... as it was after
//
// A log knows no commands and no names: who offers undo to people keeps a log for each step, in the order of the steps.
// A step costs what it changed, not what the scene holds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "standalone/scene/graph/scene_part.h"
#include "standalone/scene/names/node_id.h"

namespace vantorelix::standalone {

struct Change;  // change.h

class ChangeLog {
 public:
  ChangeLog();
  ~ChangeLog();
  ChangeLog(ChangeLog&&) noexcept;
  ChangeLog& operator=(ChangeLog&&) noexcept;

  bool empty() const;
  std::size_t size() const;  // in changes: one edit may be several
  // Whether it holds the node, which is in no scene then.
  bool keeps(NodeId node) const;
  // What was done next joins what this holds. Both are done, or both are undone.
  void append(ChangeLog&& later);

 private:
  friend struct Recorder;
  friend class SceneChanges;
  std::vector<Change> changes_;
};

// What a scene tells whoever listens, inside the edit itself.
struct SceneListener {
  std::function<void(NodeId curve)> curve_edited;     // keys, tangents or infinity of a curve changed
  std::function<void(NodeId curve)> keyframe_edited;  // a key was set, moved or removed
  std::function<void(NodeId node, const std::string& type)> node_removed;  // just before it goes
};

class SceneChanges : public ScenePart {
 public:
  using ScenePart::ScenePart;

  // Changes with every edit that can move anything or rename, add or remove a node; for caches.
  std::uint64_t revision() const;

  // From here on every change is written down in `log`, at its end; null: in none. Types that are registered, warnings
  // and the listener are not changes. The log must live until another one, or none, takes its place. Returns what was
  // there.
  ChangeLog* record(ChangeLog* log);
  // Takes back what a log holds, or does it again; a log goes back and forth between the two. Nodes come back under
  // their old numbers. The listener is told of nodes before they go and of curves once all is done, and is not
  // recorded. What does not fit any more, as something was changed meanwhile that is in no log, is left out.
  void undo(ChangeLog& log);
  void redo(ChangeLog& log);
  void set_listener(SceneListener listener);
};

}  // namespace vantorelix::standalone
