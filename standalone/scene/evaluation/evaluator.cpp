#include "standalone/scene/evaluation/evaluator.h"

#include "standalone/scene/graph/scene_data.h"

namespace vantorelix::standalone {

Vector Evaluator::translation(double frame) {
  Scene::Data& scene = *scene_.data_;
  if (motion_ != scene.evaluation.motion) {
    const Node& node = scene.at(node_);
    const bool shape = node.type->category == Category::shape;
    record_ = &record_of(scene, shape ? node.parent : node_);
    record_->asked = true;
    motion_ = scene.evaluation.motion;
  }
  return translation_of(scene.evaluation, *record_, frame);
}

}  // namespace vantorelix::standalone
