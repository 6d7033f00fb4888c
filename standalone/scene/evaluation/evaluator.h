// World positions at speed: the path that context evaluation takes.
#pragma once

#include <cstdint>

#include "base/vector.h"
#include "standalone/scene/evaluation/scene_evaluation.h"

namespace vantorelix::standalone {

struct Record;

// The world position of one node, ready to be asked at many times. Holds the node by id, compiled parts of the scene
// and a place in each curve; notices edits by the scene's revision and recompiles itself. Gives the same doubles as
// SceneEvaluation::world_matrix(node, frame).translation(). The scene must outlive it. Fastest when objects are asked
// one after another, each at all its times, and all at the same times: the scene remembers the world matrices that
// several of them share (24 MB at most, void at the next edit).
class Evaluator {
 public:
  Evaluator(const SceneEvaluation& scene, NodeId node) : scene_(scene), node_(node) {}
  Evaluator(const Evaluator&) = delete;
  Evaluator& operator=(const Evaluator&) = delete;

  // Throws host::Error when the node no longer exists.
  Vector translation(double frame);

 private:
  const SceneEvaluation& scene_;
  NodeId node_;
  Record* record_ = nullptr;
  std::uint64_t motion_ = 0;  // of the scene when the record was last known to be current; 0 is never
};

}  // namespace vantorelix::standalone
