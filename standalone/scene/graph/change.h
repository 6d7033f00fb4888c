// One change of a scene, as the part of it that was replaced. For the files of this folder only.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "standalone/scene/graph/change_log.h"
#include "standalone/scene/graph/graph.h"

namespace vantorelix::standalone {

// Each kind of change holds the state that the scene does not have: while the change is done, what was there before it;
// while it is undone, what was there after it. So undoing and redoing are the same, a swap of the scene's part with
// this one: swap_sides in change_log.cpp. `now` makes a change from the scene's present state, for Recorder::note.

// A node that came or went. A node that is kept has its inputs, but no outputs and no children: those went before it.
struct Presence {
  NodeId node;
  std::unique_ptr<Node> kept = nullptr;  // null while it is in the scene
  std::string name = {};                 // of the kept node, which no table has
  NodeId before = kNoNode;               // the sibling in front of which it hung; none for the last place

  static Presence now(const Node& node) { return {node.id}; }
};

// A node's name and where it hangs.
struct Place {
  NodeId node;
  std::string name;
  NodeId parent;
  NodeId before;  // as in Presence

  static Place now(const Graph& scene, const Node& node);
};

// What an attribute of the node holds, each attribute for itself: others may be set meanwhile without being recorded.
struct ChannelValue {
  NodeId node;
  Channel channel;
  double value;

  static ChannelValue now(const Node& node, Channel c) { return {node.id, c, (*node.channels)[index(c)]}; }
};

struct StoredValue {
  NodeId node;
  AttributeId attribute;
  std::optional<host::Value> value;  // none where the node has none of its own

  static StoredValue now(const Node& node, AttributeId attribute);
};

struct VectorArray {
  NodeId node;
  AttributeId attribute;
  std::optional<Vectors> values;

  static VectorArray now(const Node& node, AttributeId attribute);
};

struct OffsetMatrix {
  NodeId node;
  std::unique_ptr<Affine> matrix;  // null for the identity

  static OffsetMatrix now(const Node& node);
};

struct Geometry {
  NodeId node;
  int degree;
  std::vector<Vector> points;

  static Geometry now(const Node& node);
};

struct AttributeLock {
  NodeId node;
  AttributeId attribute;
  bool locked;

  static AttributeLock now(const Node& node, AttributeId attribute);
};

struct NodeLock {
  NodeId node;
  bool locked;

  static NodeLock now(const Node& node) { return {node.id, node.locked}; }
};

// What drives an attribute: nothing where the source is kNoNode.
struct Wire {
  NodeId node;  // the one that is driven
  Input input;
  std::size_t order;  // among the inputs

  static Wire now(const Node& node, AttributeId attribute);
};

// Neighbouring keys, and how many keys of the curve from `first` on stand in their place.
struct Keys {
  NodeId node;
  std::size_t first, count;
  std::vector<Key> keys;
  bool weighted;
  Infinity pre, post;

  static Keys now(const Node& node);  // all of them
};

// Whether a namespace is there.
struct NamespacePresence {
  std::string name;
  bool there;

  static NamespacePresence now(const Graph& scene, std::string_view name) {
    return {std::string(name), scene.namespaces.contains(name)};
  }
};

struct AllSettings {
  Settings settings;

  static AllSettings now(const Graph& scene) { return {scene.settings}; }
};

struct Change {
  std::variant<Presence, Place, ChannelValue, StoredValue, VectorArray, OffsetMatrix, Geometry, AttributeLock, NodeLock,
               Wire, Keys, NamespacePresence, AllSettings>
      piece;
};

}  // namespace vantorelix::standalone
