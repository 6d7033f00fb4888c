#include "standalone/scene/evaluator.h"

#include "standalone/scene/scene_data.h"

namespace vantorelix::standalone {

struct Evaluator::Plan {
  std::uint64_t motion = 0;  // of the scene when the record was last known to be current; 0 is never
  Record* record = nullptr;
};

Evaluator::Evaluator(const Scene& scene, NodeId node) : scene_(scene), node_(node), plan_(std::make_unique<Plan>()) {}

Evaluator::~Evaluator() = default;

host::Vector Evaluator::translation(double frame) {
  Scene::Data& scene = *scene_.data_;
  if (plan_->motion != scene.evaluation.motion) {
    const Node& node = scene.at(node_);
    const bool shape = node.type->category == Category::shape;
    plan_->record = &record_of(scene, shape ? node.parent : node_);
    plan_->record->asked = true;
    plan_->motion = scene.evaluation.motion;
  }
  return translation_of(scene.evaluation, *plan_->record, frame);
}

}  // namespace vantorelix::standalone
