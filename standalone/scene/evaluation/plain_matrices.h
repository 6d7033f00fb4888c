// World matrices the plain way: one node at one time, composed from its parents down. What the fast way is held
// against.
// For the files of standalone/scene only.
#pragma once

#include <cstdint>
#include <vector>

#include "base/matrix.h"
#include "standalone/scene/evaluation/records.h"

namespace vantorelix::standalone {

class PlainMatrices {
 public:
  PlainMatrices(const Graph& scene, Records& records) : scene_(scene), records_(records) {}

  // Of a transform. Matrices above it are worked out once for each time, until something moves.
  const Affine& world(NodeId transform, double frame);
  Affine local(NodeId transform, double frame);

 private:
  void compose(Record& r);

  const Graph& scene_;
  Records& records_;
  std::uint64_t walk_ = 0;  // one for each pair of time and motion
  std::uint64_t motion_ = 0;
  double frame_ = 0.0;
  std::vector<Record*> open_;
};

}  // namespace vantorelix::standalone
