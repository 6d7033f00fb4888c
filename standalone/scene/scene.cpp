#include "standalone/scene/scene.h"

#include "standalone/scene/evaluation/evaluation.h"

namespace vantorelix::standalone {

Scene::Scene()
    : graph_(std::make_unique<Graph>()),
      evaluated_(std::make_unique<Evaluation>(*graph_)),
      settings(*graph_),
      nodes(*graph_),
      names(*graph_),
      namespaces(*graph_),
      connections(*graph_),
      curves(*graph_),
      evaluation(*evaluated_),
      attributes(
          *graph_,
          [&e = *evaluated_](NodeId node, double frame) { return SceneEvaluation(e).local_matrix(node, frame); },
          [&e = *evaluated_](NodeId node, double frame) { return SceneEvaluation(e).world_matrix(node, frame); }),
      changes(*graph_),
      warnings(*graph_) {}

Scene::~Scene() = default;
Scene::Scene(Scene&&) noexcept = default;
Scene& Scene::operator=(Scene&&) noexcept = default;

}  // namespace vantorelix::standalone
