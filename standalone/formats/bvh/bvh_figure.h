// Joints as a BVH clip has them. For the files of this folder only.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "standalone/formats/bvh/bvh_losses.h"
#include "standalone/scene/scene.h"

namespace vantorelix::standalone {

// The frames that a clip has rows for.
struct BvhRows {
  double first = 0.0;
  std::size_t count = 1;

  double frame(std::size_t row) const { return first + static_cast<double>(row); }
};

struct BvhColumn {
  Channel channel;             // one of translateX to rotateZ
  std::vector<double> values;  // one for each row; radians on angles
};

struct BvhJoint {
  NodeId node;
  NodeId above;       // the joint that it hangs on in the clip; kWorld for a root
  std::size_t depth;  // 0: a root
  bool is_end_site;   // has neither joints below nor columns
  std::array<double, 3> offset{};
  std::vector<BvhColumn> columns;
  bool is_worked_out = false;  // from where it is; its channels are others than the scene's
};

// Whether this is the end site of a joint, as the reader makes one.
bool is_bvh_end_site(const Scene& scene, NodeId node);

// The topmost joints of which these transforms are part, and all joints below, each after its parent and before the
// parent's next child. Without offsets and columns.
std::vector<BvhJoint> bvh_joints(const Scene& scene, const std::vector<NodeId>& objects, BvhLosses& losses);

// Their offsets and columns. Throws CannotWrite where one is nowhere.
void fill_bvh_joints(const Scene& scene, const BvhRows& rows, std::vector<BvhJoint>& joints, BvhLosses& losses);

}  // namespace vantorelix::standalone
