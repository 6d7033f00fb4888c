// Another program, started without a shell and away from our terminal.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vantorelix::cli {

class Process {
 public:
  // The program's name or path, looked up as a shell does, and what it is told.
  explicit Process(std::vector<std::string> words);
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  // Waits until it ends, up to a time: whether it ended well, false too when it could not be started; nothing while it
  // still runs.
  std::optional<bool> wait(std::chrono::milliseconds time);
  // Ends it with all that it started.
  void end();

 private:
  std::intptr_t id_ = -1;  // of the process; on Windows its handle
  // On Windows the handle of what holds it with all that it starts.
  [[maybe_unused]] std::intptr_t group_ = -1;
};

}  // namespace vantorelix::cli
