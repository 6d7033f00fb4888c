#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/fuzz/scene_use.h"

using namespace vantorelix::standalone;

namespace {

// Gives each object keys, so that there is something to write.
void edit(Scene& scene) {
  for (const NodeId node : scene.nodes.all()) {
    if (!scene.nodes.is_transform(node)) continue;
    for (const Channel channel : {Channel::translateX, Channel::rotateZ}) try {
        scene.curves.set_key(node, channel, 3.0, 1.5);
        scene.curves.set_key(node, channel, 5.0, -0.25);
      } catch (const vantorelix::host::Error&) {
        // A track drives it.
      }
  }
}

// The writer reads the file anew.
std::filesystem::path on_disk(std::string_view bytes) {
  static const std::filesystem::path kFile =
      std::filesystem::temp_directory_path() / ("vantorelix-fuzz-" + std::to_string(getpid()) + ".glb");
  std::ofstream(kFile, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return kFile;
}

}  // namespace

// Both kinds of file: the first bytes tell them apart. Buffers outside the file are refused.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  try {
    Scene scene = read_gltf(bytes, "fuzz", {}, with_bounds());
    use(scene);
    edit(scene);
    const std::filesystem::path file = on_disk(bytes);
    write_and_read(
        scene, [&](const std::vector<NodeId>& objects) { return write_gltf(scene, objects, file); },
        [](const std::string& again) { read_gltf(again, "again", {}, {}); });
  } catch (const FormatError&) {
    // The one way to refuse a file.
  }
  return 0;
}
