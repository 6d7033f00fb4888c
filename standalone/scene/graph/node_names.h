// Names and paths of nodes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "standalone/scene/graph/scene_part.h"
#include "standalone/scene/names/node_id.h"

namespace vantorelix::standalone {

class SceneNames : public ScenePart {
 public:
  using ScenePart::ScenePart;

  std::string_view short_name(NodeId node) const;
  std::string long_name(NodeId node) const;    // "|arm|wrist"; the plain name for nodes outside the DAG
  std::string unique_name(NodeId node) const;  // the shortest path that names only this node
  // The one node that `name` (short, partial or full path) stands for; kNoNode when there is none. Throws
  // "More than one object matches name: ..." when it is ambiguous.
  NodeId find(std::string_view name) const;
  // As find, but throws "No object matches name: ..." where there is none.
  NodeId require(std::string_view name) const;
  // Every node that the pattern matches: "*" and "?" within one path component; a pattern without "|" matches short
  // names at any depth. In order of creation.
  std::vector<NodeId> match(std::string_view pattern) const;
};

}  // namespace vantorelix::standalone
