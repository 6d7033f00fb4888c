// The program as a function.
#pragma once

namespace vantorelix::cli {

// Reads the command line, runs the command and returns the exit code: 0 done, 1 error, 2 wrong usage, 3 done with
// warnings under --strict, 130 interrupted.
int run(int argc, const char* const* argv);

}  // namespace vantorelix::cli
