// The clips of a glTF file as takes, curves and tracks of a scene.
#pragma once

#include <string>
#include <vector>

#include "standalone/formats/gltf/gltf_document.h"
#include "standalone/scene/scene.h"

namespace vantorelix::standalone {

// `nodes` has the scene's node for each of the file's, kNoNode for those left out. Sets the takes and the playback
// range, and lets the clip that `wanted` names (empty: the first) drive the nodes. Throws FormatError.
void read_clips(GltfDocument& document, const std::vector<NodeId>& nodes, const std::string& wanted, Scene& scene);

}  // namespace vantorelix::standalone
