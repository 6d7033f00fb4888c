// Cameras of a glTF file. For the files of this folder only.
#pragma once

#include "standalone/scene/scene.h"

struct cgltf_camera;

namespace vantorelix::standalone {

// A camera that sees nothing, as its lens is not told, is none.
void read_camera(const cgltf_camera& camera, Scene& scene, NodeId transform);

}  // namespace vantorelix::standalone
