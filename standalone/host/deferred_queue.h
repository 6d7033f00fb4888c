// Calls put off until the host is idle.
#pragma once

#include <cstddef>
#include <deque>

#include "host/callback.h"

namespace vantorelix::standalone {

// First in, first out. Every call of this host has the lowest priority, so one queue is enough.
class DeferredQueue {
 public:
  void push(const host::Callback& function) { calls_.push_back(function); }
  std::size_t size() const { return calls_.size(); }

  // Runs the call whose turn it is; false when there is none. The call is taken out first, so that it may queue
  // itself again, and so that one that throws is not run twice.
  bool run_one() {
    if (calls_.empty()) return false;
    const host::Callback next = calls_.front();
    calls_.pop_front();
    next.function();
    return true;
  }

 private:
  std::deque<host::Callback> calls_;
};

}  // namespace vantorelix::standalone
