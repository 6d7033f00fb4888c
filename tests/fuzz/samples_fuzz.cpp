#include <cstddef>
#include <cstdint>
#include <string_view>

#include "tests/fuzz/scene_use.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vantorelix::standalone;
  try {
    use(read_samples({reinterpret_cast<const char*>(data), size}, "fuzz"));
  } catch (const FormatError&) {
    // The one way to refuse a file.
  }
  return 0;
}
