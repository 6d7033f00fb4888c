#include <windows.h>

#include <atomic>
#include <csignal>

#include "cli/terminal/interrupt.h"

namespace vantorelix::cli {

namespace {

std::atomic<int> noted_signal = 0;

// Called in a thread of the system's own.
BOOL WINAPI note_event(DWORD event) {
  const bool key = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
  if (noted_signal.exchange(key ? SIGINT : SIGTERM) != 0) return FALSE;  // the second one: the system ends the program
  // The window closes or the user logs off: when this returns, the program is ended, and it still has to clean up.
  if (!key) Sleep(INFINITE);
  return TRUE;
}

}  // namespace

void catch_interrupts() { SetConsoleCtrlHandler(note_event, TRUE); }
bool interrupted() { return noted_signal != 0; }
bool reader_is_gone() { return false; }
int interrupt_exit_code() { return 128 + noted_signal; }

}  // namespace vantorelix::cli
