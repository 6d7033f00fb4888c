#include "cli/terminal/interrupt.h"

#include <csignal>

#include "host/error.h"

namespace vantorelix::cli {

namespace {

volatile std::sig_atomic_t noted_signal = 0;

extern "C" void note_signal(int number) {
  noted_signal = number;
  std::signal(number, SIG_DFL);
}

}  // namespace

void catch_interrupts() {
  for (const int number : {SIGINT, SIGTERM})
    // Whoever started the program in the background has told it not to listen.
    if (std::signal(number, note_signal) == SIG_IGN) std::signal(number, SIG_IGN);
}

bool interrupted() { return noted_signal != 0; }

void check_interrupt() {
  if (interrupted()) throw host::Interrupt();
}

int interrupt_exit_code() { return 128 + noted_signal; }

}  // namespace vantorelix::cli
