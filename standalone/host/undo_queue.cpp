#include "standalone/host/undo_queue.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "host/error.h"

namespace vantorelix::standalone {

void UndoQueue::begin(std::string name) {
  if (!on_) return begin_aside();
  auto entry = std::make_unique<Entry>();
  entry->name = std::move(name);
  entry->selected_before = host_.selection();
  pending_.push_back(std::move(entry));
  begin(pending_.back().get());
}

void UndoQueue::begin_aside() { begin(nullptr); }

void UndoQueue::begin(Entry* entry) {
  running_.push_back({entry, host_.scene().changes.record(entry ? &entry->changes : nullptr)});
}

void UndoQueue::end(bool succeeded) {
  if (running_.empty()) return;
  const Frame frame = running_.back();
  running_.pop_back();
  host_.scene().changes.record(frame.outer);
  if (frame.entry) {
    Entry& entry = *frame.entry;
    entry.selected_after = host_.selection();
    entry.counts = succeeded || !entry.changes.empty() || entry.selected_after != entry.selected_before;
  }
  if (!running_.empty()) return;
  for (auto& entry : std::exchange(pending_, {}))
    if (entry->counts) add(std::move(*entry));
}

void UndoQueue::add(Entry entry) {
  undone_.clear();
  if (chunk_depth_ == 0) {
    done_.push_back(std::move(entry));
    return trim();
  }
  if (!chunk_.counts) {
    if (!chunk_.name.empty()) entry.name = std::move(chunk_.name);
    chunk_ = std::move(entry);
  } else {
    chunk_.changes.append(std::move(entry.changes));
    chunk_.selected_after = std::move(entry.selected_after);
  }
}

void UndoQueue::open_chunk(std::string name) {
  if (chunk_depth_++ > 0) return;
  chunk_ = Entry{};
  chunk_.name = std::move(name);
}

void UndoQueue::close_chunk() {
  if (chunk_depth_ == 0 || --chunk_depth_ > 0) return;
  Entry chunk = std::exchange(chunk_, Entry{});
  if (chunk.counts) add(std::move(chunk));
}

void UndoQueue::trim() {
  while (!infinite_ && done_.size() > length_) done_.pop_front();
}

void UndoQueue::set_length(std::size_t length) {
  length_ = length;
  trim();
}

void UndoQueue::set_infinite(bool infinite) {
  infinite_ = infinite;
  trim();
}

void UndoQueue::clear() {
  ++clears_;
  done_.clear();
  undone_.clear();
  pending_.clear();
  chunk_ = Entry{};
  for (Frame& frame : running_) frame = {nullptr, nullptr};
  host_.scene().changes.record(nullptr);
}

void UndoQueue::require_idle(const char* what) const {
  if (!on_) throw host::Error(std::string(what) + ": undo is switched off; switch it on first.");
  if (chunk_depth_ > 0) throw host::Error(std::string(what) + ": an undo chunk is open; close it first.");
  if (!running_.empty())
    throw host::Error(std::string(what) + ": another command is still running; call it after that.");
}

void UndoQueue::move_last(std::deque<Entry>& from, std::deque<Entry>& to, bool undoing) {
  Entry entry = std::move(from.back());
  from.pop_back();
  const std::size_t clears = clears_;
  begin_aside();  // what listeners do has entries of its own
  if (undoing) {
    host_.scene().changes.undo(entry.changes);
  } else {
    host_.scene().changes.redo(entry.changes);
  }
  if (clears == clears_) {  // else a listener has opened another scene
    if (entry.selected_before != entry.selected_after)
      host_.select(undoing ? entry.selected_before : entry.selected_after);
    to.push_back(std::move(entry));
  }
  end(false);
}

void UndoQueue::undo() {
  require_idle("undo");
  if (done_.empty()) throw host::Error("There are no more commands to undo.");
  move_last(done_, undone_, true);
}

void UndoQueue::redo() {
  require_idle("redo");
  if (undone_.empty()) throw host::Error("There are no more commands to redo.");
  move_last(undone_, done_, false);
}

std::vector<std::string> UndoQueue::names() const {
  std::vector<std::string> names;
  std::transform(done_.begin(), done_.end(), std::back_inserter(names), [](const Entry& entry) { return entry.name; });
  return names;
}

bool UndoQueue::keeps(NodeId node) const {
  const auto keep = [node](const Entry& entry) { return entry.changes.keeps(node); };
  return chunk_.changes.keeps(node) || std::any_of(done_.begin(), done_.end(), keep) ||
         std::any_of(undone_.begin(), undone_.end(), keep);
}

}  // namespace vantorelix::standalone
