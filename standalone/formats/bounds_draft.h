// The box around a surface while it is read. For the files of standalone/formats only.
#pragma once

#include "base/vector.h"
#include "standalone/scene/scene.h"

namespace vantorelix::standalone {

class BoundsDraft {
 public:
  // Empty, or what the node has already.
  BoundsDraft() = default;
  BoundsDraft(const Scene& scene, NodeId node);

  // Leaves out what is not finite.
  void add(const Vector& p);
  // Gives the node kBounds: a cube of one unit around its origin where the draft is empty.
  void assign_to(Scene& scene, NodeId node) const;

 private:
  Vector low_, high_;
  bool empty_ = true;
};

// Gives the node an empty kBounds: its surface is not where the node is.
void mark_deformed(Scene& scene, NodeId node);

}  // namespace vantorelix::standalone
