// What the parts of a scene's face have in common. For the files of this folder only.
#pragma once

namespace vantorelix::standalone {

struct Graph;

// A part refers to the graph that it shows and owns nothing of it; a const part shows a const graph.
class ScenePart {
 public:
  explicit ScenePart(Graph& graph) : graph_(&graph) {}

 protected:
  Graph& graph() { return *graph_; }
  const Graph& graph() const { return *graph_; }

 private:
  Graph* graph_;
};

}  // namespace vantorelix::standalone
