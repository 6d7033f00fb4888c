#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "standalone/formats/writer.h"
#include "tests/fuzz/scene_use.h"

namespace {

using namespace vantorelix::standalone;

// What the reader accepted is written as a clip that it accepts, too; traps where it does not.
void write_and_read(const Scene& scene) {
  std::vector<NodeId> objects;
  for (const NodeId node : scene.nodes.all())
    if (scene.nodes.is_transform(node)) objects.push_back(node);
  try {
    read_bvh(write_bvh(scene, objects, {scene.settings.playback_min(), scene.settings.playback_max()}).bytes, "again");
  } catch (const FormatError&) {
    __builtin_trap();
  } catch (const CannotWrite&) {
    // Nothing is written.
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const Scene scene = read_bvh({reinterpret_cast<const char*>(data), size}, "fuzz");
    use(scene);
    write_and_read(scene);
  } catch (const FormatError&) {
    // The one way to refuse a file.
  }
  return 0;
}
