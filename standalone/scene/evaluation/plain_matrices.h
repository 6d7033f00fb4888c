// World matrices the plain way: one node at one time, composed from the top of its hierarchy down. Positions must give
// the same doubles, and tests compare the two.
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

  // The world matrix of a transform, valid until the next call. The matrices above it are kept for calls at the same
  // frame, until anything in the scene moves.
  const Affine& world(NodeId transform, double frame);
  Affine local(NodeId transform, double frame);
  Affine above(NodeId transform, double frame);

 private:
  void compose(Record& r);

  const Graph& scene_;
  Records& records_;
  std::uint64_t walk_ = 0;  // the number of this pair of frame_ and motion_; a record whose `walk` is equal is done
  std::uint64_t motion_ = 0;
  double frame_ = 0.0;
  std::vector<Record*> open_;
};

}  // namespace vantorelix::standalone
