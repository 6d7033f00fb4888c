// Ctrl-C and a polite kill: noted, then thrown from the next safe place, so that destructors clean up.
#pragma once

namespace vantorelix::cli {

// From now on the first SIGINT or SIGTERM is only noted; a second one ends the program at once.
void catch_interrupts();
// Whether one was noted.
bool interrupted();
// Throws host::Interrupt once one was.
void check_interrupt();
// 128 plus the signal's number, as shells have it.
int interrupt_exit_code();

}  // namespace vantorelix::cli
