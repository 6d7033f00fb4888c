#include "cli/terminal/interrupt.h"

#include <csignal>

namespace vantorelix::cli {

namespace {

volatile std::sig_atomic_t noted_signal = 0;

extern "C" void note_signal(int number) {
  noted_signal = number;
  std::signal(number, SIG_DFL);
}

#ifdef _WIN32
constexpr int kSignals[] = {SIGINT, SIGTERM, SIGBREAK};

bool is_ignored(int number) {
  const auto before = std::signal(number, SIG_DFL);
  std::signal(number, before);
  return before == SIG_IGN;
}

void note(int number) { std::signal(number, note_signal); }
#else
constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};

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
#endif

}  // namespace

void catch_interrupts() {
  for (const int number : kSignals)
    // A shell ignores SIGINT for what it starts in the background, and nohup SIGHUP: that stays so.
    if (!is_ignored(number)) note(number);
}

bool interrupted() { return noted_signal != 0; }

void check_interrupt() {
  if (interrupted()) throw host::Interrupt();
}

bool reader_is_gone() {
#ifdef SIGPIPE
  return noted_signal == SIGPIPE;
#else
  return false;
#endif
}

int interrupt_exit_code() { return 128 + noted_signal; }

}  // namespace vantorelix::cli
