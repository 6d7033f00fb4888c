#include <csignal>
#include <initializer_list>

#include "cli/terminal/interrupt.h"

namespace vantorelix::cli {

namespace {

volatile std::sig_atomic_t noted_signal = 0;

extern "C" void note_signal(int number) {
  noted_signal = number;
  std::signal(number, SIG_DFL);
}

bool is_ignored(int number) {
  struct sigaction before {};
  sigaction(number, nullptr, &before);
  return before.sa_handler == SIG_IGN;
}

// Without SA_RESTART, which std::signal sets: a read or write that waits ends with EINTR.
void note(int number) {
  struct sigaction action {};
  action.sa_handler = note_signal;
  sigaction(number, &action, nullptr);
}

}  // namespace

void catch_interrupts() {
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE})
    // A shell ignores SIGINT for what it starts in the background, and nohup SIGHUP: that stays so.
    if (!is_ignored(number)) note(number);
}

bool interrupted() { return noted_signal != 0; }
bool reader_is_gone() { return noted_signal == SIGPIPE; }
int interrupt_exit_code() { return 128 + noted_signal; }

}  // namespace vantorelix::cli
