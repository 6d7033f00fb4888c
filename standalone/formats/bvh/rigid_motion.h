// Where joints of any kind are, as translations and rotations below each other. For the files of this folder only.
#pragma once

#include <unordered_map>
#include <vector>

#include "standalone/formats/bvh/bvh_figure.h"
#include "standalone/formats/bvh/rigid_frame.h"

namespace vantorelix::standalone {

class RigidMotion {
 public:
  RigidMotion(const Scene& scene, const BvhRows& rows) : scene_(scene), rows_(rows) {}

  // The offset and the columns with which the joint is where it is in the world, and turned as it is; a rotation goes
  // on from row to row without a turn more than it takes. False where that leaves out scale or shear.
  bool work_out(BvhJoint& joint);

 private:
  // A node's in every row.
  const std::vector<RigidFrame>& frames_of(NodeId node);

  const Scene& scene_;
  BvhRows rows_;
  std::unordered_map<NodeId, std::vector<RigidFrame>> frames_;
};

}  // namespace vantorelix::standalone
