#include <unistd.h>

#include "cli/terminal/streams.h"

namespace vantorelix::cli {

void prepare_streams() {}

bool is_terminal(std::FILE* stream) { return isatty(fileno(stream)) != 0; }

}  // namespace vantorelix::cli
