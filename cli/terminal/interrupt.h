// Ctrl-C, a polite kill, a terminal that closes and a reader that goes away: noted, then thrown from the next safe
// place, so that destructors clean up.
#pragma once

namespace vantorelix::cli {

// From now on the first SIGINT, SIGTERM, SIGHUP or SIGPIPE is only noted, and breaks off reading and writing that
// wait; a second one ends the program at once.
void catch_interrupts();
// Whether one was noted.
bool interrupted();
// Throws host::Interrupt once one was.
void check_interrupt();
// Whether it was the reader of our output that went away, who wants to hear no more.
bool reader_is_gone();
// 128 plus the signal's number, as shells have it.
int interrupt_exit_code();

}  // namespace vantorelix::cli
