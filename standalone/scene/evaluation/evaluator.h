// World positions at speed: the path that context evaluation takes.
#pragma once

#include <cstdint>
#include <span>

#include "base/vector.h"
#include "standalone/scene/evaluation/scene_evaluation.h"

namespace vantorelix::standalone {

struct Record;

// The world position of one node, ready to be asked at many times. Holds the node by id, compiled parts of the scene
// and a place in each curve; notices edits and recompiles itself. Gives the same doubles as
// SceneEvaluation::world_matrix(node, frame).translation(). The scene must outlive it. Fastest when it is told which
// frames come, and when objects are asked one after another, all at the same frames: the scene remembers the world
// matrices that several of them share (24 MB at most, void at the next edit).
class Evaluator {
 public:
  Evaluator(const SceneEvaluation& scene, NodeId node) : scene_(scene), node_(node) {}
  Evaluator(const Evaluator&) = delete;
  Evaluator& operator=(const Evaluator&) = delete;

  // The frames that come next, in their order. Evaluates nothing; those of another evaluator before them are forgotten.
  void expect(std::span<const double> frames);
  // Throws host::Error when the node no longer exists.
  Vector translation(double frame);

 private:
  const SceneEvaluation& scene_;
  NodeId node_;
  Record* record_ = nullptr;
  std::uint64_t motion_ = 0;  // of the scene when the record was last known to be current; 0 is never
};

}  // namespace vantorelix::standalone
