// What of a scene's animation is other than in the glTF file that it was opened from. For the files of this folder
// only.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "standalone/formats/gltf/gltf_keys.h"
#include "standalone/scene/scene.h"

namespace vantorelix::standalone {

// All keys of one channel of the clip.
struct GltfChange {
  std::size_t node;  // its number in the file
  const char* path;  // "translation", "rotation" or "scale"
  GltfKeys keys;
};

// Whether a transform is one of a glTF file.
bool is_gltf_scene(const Scene& scene, const std::vector<NodeId>& objects);

// `opened` is the file, which `name` names, as it is read now. What glTF does not hold goes to `lost`. Throws
// CannotWrite, also where that is another file than the scene's.
std::vector<GltfChange> gltf_changes(const Scene& scene, const Scene& opened, const std::string& name,
                                     const std::vector<NodeId>& objects, std::vector<std::string>& lost);

}  // namespace vantorelix::standalone
