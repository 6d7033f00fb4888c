// The scenes that are measured. bench/peers/ builds the same ones from the same numbers.
#pragma once

#include <string>
#include <vector>

#include "standalone/scene/scene.h"

namespace vantorelix::bench {

// A scene, and the objects whose trails are asked for. Frames 1 to the number given.
struct Stage {
  standalone::Scene scene;
  std::vector<standalone::NodeId> objects;
};

// Every object has its translation and rotation keyed, 5 keys a curve spread over the range, auto tangents.
Stage separate_objects(int objects, int frames);
Stage chain(int links, int frames);          // the leaf's trail only
Stage binary_tree(int objects, int frames);  // all trails

// A BVH file: a root with six channels and five limbs of three-channel joints, a motion row a frame.
std::string bvh_text(int joints, int frames);

}  // namespace vantorelix::bench
