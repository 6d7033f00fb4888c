// What the user can undo: an entry for each command that changed the scene or the selection.
#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "standalone/host/host.h"
#include "standalone/scene/graph/change_log.h"

namespace vantorelix::standalone {

// What is done outside of commands has no entry, but is undone with nothing either: the scene's log leaves it alone.
class UndoQueue {
 public:
  // The host must outlive it.
  explicit UndoQueue(Host& host) : host_(host) {}

  // --- commands. A command that changed nothing has an entry all the same, unless it failed. One that begins within
  // another, as a listener calls it, has an entry of its own behind the other's. What is done between begin_aside and
  // end is not a command's: that of the command around it goes on after it.
  void begin(std::string name);
  void begin_aside();
  void end(bool succeeded);

  // --- chunks: the commands of one are one entry, which has the name that the outermost was given, or that of its
  // first command. A chunk without commands leaves none.
  void open_chunk(std::string name);
  void close_chunk();  // nothing happens when none is open
  const std::string& chunk_name() const { return chunk_.name; }

  // --- undoing. Each throws host::Error when there is no entry, undo is off, a chunk is open, or a command is running.
  void undo();
  void redo();
  // Forgets every entry, and what running commands did so far.
  void clear();

  // --- settings: 50 entries at most unless set otherwise, the oldest go first. Switching off forgets nothing.
  bool on() const { return on_; }
  void set_on(bool on) { on_ = on; }
  std::size_t length() const { return length_; }
  bool infinite() const { return infinite_; }
  void set_length(std::size_t length);
  void set_infinite(bool infinite);

  // --- what is on it; the names are those of the entries that are next, empty when there is none
  std::size_t undo_count() const { return done_.size(); }
  std::size_t redo_count() const { return undone_.size(); }
  std::string undo_name() const { return done_.empty() ? "" : done_.back().name; }
  std::string redo_name() const { return undone_.empty() ? "" : undone_.back().name; }
  std::vector<std::string> names() const;  // the oldest first
  // Whether an entry could bring the node back.
  bool keeps(NodeId node) const;

 private:
  struct Entry {
    std::string name;
    ChangeLog changes;
    std::vector<NodeId> selected_before, selected_after;
    bool counts = false;
  };
  // A command, or something aside, that is running.
  struct Frame {
    Entry* entry;      // of pending_; null when nothing is written down
    ChangeLog* outer;  // what the scene was recorded in before
  };

  void begin(Entry* entry);
  void add(Entry entry);
  void trim();
  void require_idle(const char* what) const;
  void move_last(std::deque<Entry>& from, std::deque<Entry>& to, bool undoing);

  Host& host_;
  std::deque<Entry> done_, undone_;  // the next one last
  std::vector<Frame> running_;
  std::vector<std::unique_ptr<Entry>> pending_;  // of commands that began since none was running
  Entry chunk_;
  std::size_t chunk_depth_ = 0;
  std::size_t clears_ = 0;
  bool on_ = true;
  std::size_t length_ = 50;
  bool infinite_ = false;
};

}  // namespace vantorelix::standalone
