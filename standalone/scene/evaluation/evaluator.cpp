#include "standalone/scene/evaluation/evaluator.h"

#include "standalone/scene/evaluation/records.h"

namespace vantorelix::standalone {

Vector Evaluator::translation(double frame) {
  const Graph& scene = scene_.evaluation_->graph;
  if (motion_ != scene.counts.motion) {
    const Node& node = scene.at(node_);
    const bool shape = node.type->category == Category::shape;
    record_ = &record_of(scene, shape ? node.parent : node_);
    record_->asked = true;
    motion_ = scene.counts.motion;
  }
  return translation_of(*scene_.evaluation_, *record_, frame);
}

}  // namespace vantorelix::standalone
