#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/fuzz/scene_use.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vantorelix::standalone;
  try {
    const Scene scene = read_maya_ascii({reinterpret_cast<const char*>(data), size}, "fuzz", with_bounds());
    use(scene);
    write_and_read(
        scene, [&](const std::vector<NodeId>& objects) { return write_maya_curves(scene, objects); },
        [](const std::string& bytes) { read_maya_ascii(bytes, "again", {}); });
  } catch (const FormatError&) {
    // The one way to refuse a file.
  }
  return 0;
}
