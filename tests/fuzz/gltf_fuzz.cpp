#include <cstddef>
#include <cstdint>

#include "tests/fuzz/scene_use.h"

// Both kinds of file: the first bytes tell them apart. Buffers outside the file are refused.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vantorelix::standalone;
  try {
    use(read_gltf({reinterpret_cast<const char*>(data), size}, "fuzz", {}, with_bounds()));
  } catch (const FormatError&) {
    // The one way to refuse a file.
  }
  return 0;
}
