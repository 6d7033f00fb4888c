// The three standard streams.
#pragma once

#include <cstdio>

namespace vantorelix::cli {

// At the start of the program: from here on what is written arrives byte for byte, and a terminal takes it for UTF-8
// and obeys its codes for colours until the program ends.
void prepare_streams();
bool is_terminal(std::FILE* stream);

}  // namespace vantorelix::cli
