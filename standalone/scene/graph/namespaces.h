// Namespaces.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "standalone/scene/graph/scene_part.h"
#include "standalone/scene/names/node_id.h"

namespace vantorelix::standalone {

// The name from the root for a node that is to be renamed.
struct NewName {
  std::string text;
  bool dropped = false;  // a namespace that was named and is not there
};

// A node is in the namespace that stands before the last colon of its name. Here namespaces are named from the root,
// without a colon in front; "" is the root, which is always there. A node's namespace is made with the node, those
// above it too, and stays when the node goes. The current one is where nodes go whose name says nothing else.
class SceneNamespaces : public ScenePart {
 public:
  using ScenePart::ScenePart;

  bool has(std::string_view name) const;
  void add(std::string_view name);     // and those above it; there already, nothing happens
  void remove(std::string_view name);  // throws unless it is there, empty and not the current one
  const std::string& current() const;
  void set_current(std::string_view name);  // throws unless it is there
  std::vector<std::string> all() const;     // all but the root, in alphabetical order
  // In order of creation; what is in a namespace below it is not in it.
  std::vector<NodeId> nodes_in(std::string_view name) const;
  // The name from the root for a node to be made: a colon in front means the root, a namespace in the name is one from
  // the root, and a plain name is one in the current namespace.
  std::string name_for_new(std::string_view name) const;
  // The same for a node to be renamed. A namespace in the name is looked up below the current one; `dropped` says that
  // it is not there and does not count. Without `relative_counts` it never does, and that is not a reason to say so.
  NewName name_for_renamed(std::string_view name, bool relative_counts = true) const;
};

}  // namespace vantorelix::standalone
