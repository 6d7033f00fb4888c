// Making, moving, renaming and deleting nodes.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/value.h"
#include "standalone/scene/graph/scene_part.h"
#include "standalone/scene/names/node_id.h"

namespace vantorelix::standalone {

class SceneNodes : public ScenePart {
 public:
  using ScenePart::ScenePart;

  // Creates a node. DAG types (transform, joint, camera, locator, mesh, nurbsCurve, registered shapes, ...) go under
  // `parent`, which the others ignore. A shape without a parent gets a transform of its own, which bears the type's
  // default name whatever the shape's is: "vlx_ball_vizShape" of type "vantorelix" hangs under "vantorelix1". An
  // empty name gives the type's default ("joint1", "curveShape1"). Defaults are in the current namespace, names that
  // are given are from the root. An unknown type is outside the DAG, or, with a parent, in it: a shape when its type
  // ends in "Shape" or its name holds it, else a transform that cannot be followed. Illegal characters become "_", as
  // does a digit in front; a name already taken among siblings (outside the DAG: anywhere) gets the next free number at
  // its end. Returns the node of that type.
  NodeId create(std::string_view type, std::string_view name, NodeId parent = kWorld);
  // Makes a further DAG shape type known, as a loaded plug-in does. Every node of it, there already or not, has the
  // attributes, with these values until it is given its own.
  void register_shape_type(std::string_view type,
                           std::span<const std::pair<std::string_view, host::Value>> attributes = {});
  bool is_registered_type(std::string_view type) const;
  // Deletes the node, its descendants, what hangs on them alone (their animation curves), and a transform's shapes.
  // Throws for a locked node.
  void remove(NodeId node);
  // Takes a name from the root. Returns the name that the node got (made unique, shortest unique path). A transform
  // renames its only shape along when that is called after it ("ballShape", "ballShape1" under "ball1"). Throws for a
  // locked node.
  std::string rename(NodeId node, std::string_view name);
  // Reparents, keeping local values; renames on a clash of siblings. Throws when `parent` is the node itself or one
  // of its descendants, or no transform.
  void set_parent(NodeId node, NodeId parent);
  void lock(NodeId node, bool locked);

  bool exists(NodeId node) const;
  const std::string& type(NodeId node) const;
  bool is_transform(NodeId node) const;  // transform, joint, and whatever else can have children
  bool is_shape(NodeId node) const;
  NodeId parent(NodeId node) const;  // kWorld at the top
  std::vector<NodeId> children(NodeId node) const;
  std::vector<NodeId> shapes(NodeId transform) const;
  // All nodes in order of creation.
  std::vector<NodeId> all() const;
  std::vector<NodeId> of_type(std::string_view type) const;
};

}  // namespace vantorelix::standalone
