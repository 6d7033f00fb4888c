// What was done to a scene while it was recorded, and undoing it.
//
//   ChangeLog log;
//   scene.record(&log);
//   ...                      edits
//   scene.record(nullptr);
//   scene.undo(log);         the scene is as it was before
//   scene.redo(log);         ... as it was after
//
// A log knows no commands and no names: who offers undo to people keeps a log for each step, in the order of the steps.
// A step costs what it changed, not what the scene holds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

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
  bool keeps(std::uint32_t node) const;
  // What was done next joins what this holds. Both are done, or both are undone.
  void append(ChangeLog&& later);

 private:
  friend struct Recorder;
  friend class Scene;
  std::vector<Change> changes_;
};

}  // namespace vantorelix::standalone
