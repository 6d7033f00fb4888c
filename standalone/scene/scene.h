// A scene: named nodes in a DAG, their attributes, the connections between them, and world matrices at any time.
//
// Names, uniqueness, parenting, renaming, locking and deletion follow the rules of the host that this one stands in
// for. Everything that takes a node takes its NodeId; names are looked up once, at the edge. One thread at a time.
// All failures are host::Error with the text that the host would give, and leave the scene as it was.
#pragma once

#include <memory>

#include "standalone/scene/evaluation/scene_evaluation.h"
#include "standalone/scene/graph/change_log.h"
#include "standalone/scene/graph/connections.h"
#include "standalone/scene/graph/curve_nodes.h"
#include "standalone/scene/graph/namespaces.h"
#include "standalone/scene/graph/node_attributes.h"
#include "standalone/scene/graph/node_names.h"
#include "standalone/scene/graph/nodes.h"
#include "standalone/scene/graph/settings.h"

namespace vantorelix::standalone {

// Each part is one way of looking at the same graph of nodes, and a const scene's parts change nothing. What was moved
// from may only be assigned to or destroyed.
class Scene {
  // First: all parts refer to them.
  std::unique_ptr<Graph> graph_;
  std::unique_ptr<Evaluation> evaluated_;

 public:
  Scene();
  ~Scene();
  Scene(Scene&&) noexcept;
  Scene& operator=(Scene&&) noexcept;

  SceneSettings settings;
  SceneNodes nodes;
  SceneNames names;
  SceneNamespaces namespaces;
  SceneConnections connections;
  SceneCurves curves;
  SceneEvaluation evaluation;
  SceneAttributes attributes;
  SceneChanges changes;
  SceneWarnings warnings;
};

}  // namespace vantorelix::standalone
