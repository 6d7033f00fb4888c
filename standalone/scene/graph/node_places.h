// Where nodes are: in the list of all, among their siblings, in the table of names. For the files of this folder only.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "standalone/scene/graph/graph.h"

namespace vantorelix::standalone {

// What a node's name is unique in.
NodeId scope_of(const Graph& scene, const Node& node);

// Among the children of the node's parent: at the end, or in front of one of them where that is given.
void attach(Graph& scene, Node& node, NodeId before = kNoNode);
void detach(Graph& scene, const Node& node);
// The next of the siblings; kNoNode for the last one.
NodeId sibling_after(const Graph& scene, const Node& node);

// Takes a node out of the scene, its connections with it: what it drives is driven no longer, and it keeps its inputs.
// It must have no children.
std::unique_ptr<Node> take_out(Graph& scene, NodeId node);
// Puts it back. Sources that are gone drive it no longer. Its place must be empty and its parent there.
void put_in(Graph& scene, std::unique_ptr<Node> node, const std::string& name, NodeId before);

// Parents before their children, `root` first.
std::vector<NodeId> with_descendants(const Graph& scene, NodeId root);
bool is_below(const Graph& scene, NodeId node, NodeId ancestor);

}  // namespace vantorelix::standalone
