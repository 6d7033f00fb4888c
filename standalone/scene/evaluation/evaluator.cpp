#include "standalone/scene/evaluation/evaluator.h"

#include "standalone/scene/evaluation/evaluation.h"

namespace vantorelix::standalone {

void Evaluator::expect(std::span<const double> frames) { scene_.evaluation_->positions.expect(frames); }

Vector Evaluator::translation(double frame) {
  Evaluation& evaluation = *scene_.evaluation_;
  if (motion_ != evaluation.graph.counts.motion) {
    const Node& node = evaluation.graph.at(node_);
    const bool shape = node.type->category == Category::shape;
    record_ = &evaluation.records.of(shape ? node.parent : node_);
    record_->asked = true;
    motion_ = evaluation.graph.counts.motion;
  }
  return evaluation.positions.at(*record_, frame);
}

}  // namespace vantorelix::standalone
