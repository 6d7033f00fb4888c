// Ctrl-C, a polite kill, a terminal that closes and a reader that goes away: noted, then thrown from the next safe
// place, so that destructors clean up.
#pragma once

#include <string>
#include <utility>

#include "host/error.h"

namespace vantorelix::cli {

// From now on the first SIGINT, SIGTERM, SIGHUP or SIGPIPE is only noted, and breaks off reading and writing that
// wait; a second one ends the program at once.
void catch_interrupts();
// Whether one was noted.
bool interrupted();
// Throws host::Interrupt once one was.
void check_interrupt();
// An interrupt of which there is more to say than that no file was written.
class PartlyDone : public host::Interrupt {
 public:
  explicit PartlyDone(std::string text) : text_(std::move(text)) {}
  const std::string& text() const { return text_; }

 private:
  std::string text_;
};
// Whether it was the reader of our output that went away, who wants to hear no more.
bool reader_is_gone();
// 128 plus the signal's number, as shells have it.
int interrupt_exit_code();

}  // namespace vantorelix::cli
