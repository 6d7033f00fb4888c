// The two ways in which the program gives up.
#pragma once

#include <stdexcept>
#include <string>

namespace vantorelix::cli {

enum ExitCode { kDone = 0, kFailed = 1, kUsage = 2, kWarned = 3 };

// Something went wrong in the work: exit code 1. The text is "what; what to do".
struct Failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The command line asks for what cannot be: exit code 2.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace vantorelix::cli
