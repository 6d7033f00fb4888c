// Prints a hash of a million results of each function of base/mathematics/mathematics.h.
#include <cinttypes>
#include <cstdio>

#include "tests/support/mathematics_arguments.h"

int main() {
  for (const auto& function : vantorelix::support::kMathematics)
    std::printf("%s: %016" PRIx64 "\n", function.name, vantorelix::support::hash_of(function, 1000000));
}
