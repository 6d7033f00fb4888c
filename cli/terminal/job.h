// This program once more, as a child that works on a part of what was asked for.
//
// What it takes of the system: to start a program with its standard error in a file; to ask whether it has ended, and
// how; to send it alone the signal on which it ends itself and removes what is half done (catch_interrupts). So it is
// in a process group of its own: Ctrl-C, which goes to a whole group, reaches us, and we pass it on. POSIX: fork,
// setpgid, waitpid, SIGTERM. Windows: CreateProcess, inherited handles, CTRL_BREAK_EVENT.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/file.h"

namespace vantorelix::cli {

class Job {
 public:
  // Starts it with these arguments. It reads nothing, and what it prints on standard output goes nowhere. Throws
  // Failure.
  explicit Job(const std::vector<std::string>& arguments);
  // One that still runs is stopped, and waited for.
  ~Job();
  Job(const Job&) = delete;
  Job& operator=(const Job&) = delete;

  // The exit code once it has ended, 128 + N when signal N ended it; nothing while it runs. Does not wait.
  std::optional<int> exit_code();
  // Tells it to end. It takes a moment, or longer where it waits for something.
  void stop();
  // All that it has written to standard error; once it has ended.
  std::string errors();

 private:
  [[noreturn]] static void fail_to_start();

  File errors_;                               // a file without a name, which goes away with it
  std::intptr_t id_ = 0;                      // of the process; on Windows its handle. 0 once it has ended
  [[maybe_unused]] std::uint32_t group_ = 0;  // on Windows its process group
  int exit_code_ = 0;
  bool stopped_ = false;
};

}  // namespace vantorelix::cli
