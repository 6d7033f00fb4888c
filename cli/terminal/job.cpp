#include "cli/terminal/job.h"

#include <array>
#include <chrono>
#include <thread>

#include "cli/terminal/failure.h"

namespace vantorelix::cli {

void Job::fail_to_start() {
  throw Failure("no further process could be started; lower --jobs, or look for what takes up the system");
}

Job::~Job() {
  stop();
  while (!exit_code()) std::this_thread::sleep_for(std::chrono::milliseconds(2));
}

std::string Job::errors() {
  std::string text;
  std::rewind(errors_.get());
  std::array<char, 4096> piece{};
  for (std::size_t size = 1; size != 0;) {
    size = std::fread(piece.data(), 1, piece.size(), errors_.get());
    text.append(piece.data(), size);
  }
  return text;
}

}  // namespace vantorelix::cli
