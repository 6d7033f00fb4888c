#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/fuzz/scene_use.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vantorelix::standalone;
  try {
    const Scene scene = read_bvh({reinterpret_cast<const char*>(data), size}, "fuzz");
    use(scene);
    const FrameRange range{scene.settings.playback_min(), scene.settings.playback_max()};
    write_and_read(
        scene, [&](const std::vector<NodeId>& objects) { return write_bvh(scene, objects, range); },
        [](const std::string& bytes) { read_bvh(bytes, "again"); });
  } catch (const FormatError&) {
    // The one way to refuse a file.
  }
  return 0;
}
