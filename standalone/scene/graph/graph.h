// What a scene keeps. For the files of standalone/scene only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "base/matrix.h"
#include "base/vector.h"
#include "host/error.h"
#include "host/value.h"
#include "standalone/scene/attributes/attribute_names.h"
#include "standalone/scene/attributes/node_types.h"
#include "standalone/scene/connections/inputs.h"
#include "standalone/scene/curves/anim_curve.h"
#include "standalone/scene/curves/track.h"
#include "standalone/scene/graph/change_log.h"
#include "standalone/scene/graph/settings.h"
#include "standalone/scene/names/name_table.h"
#include "standalone/scene/transforms/local_matrix.h"

namespace vantorelix::standalone {

using Values = std::vector<std::pair<AttributeId, host::Value>>;  // ascending by attribute

struct NodeType {
  std::string name;
  Category category;
  NameSet names;
  std::vector<NodeId> nodes = {};  // ascending; some of them may be gone,
  std::size_t gone = 0;            // this many
  Values values = {};              // what every node of the type has until it is given its own
  NodeType* next =
      nullptr;  // of the same name in another category, in a ring: some types are only known from their use
};

// What few nodes have.
struct Extras {
  Values values;
  std::vector<std::pair<AttributeId, Vectors>> vectors;
  std::vector<AttributeId> locked;               // ascending
  std::unique_ptr<Affine> offset_parent_matrix;  // identity when null
  int curve_degree = 0;
  std::vector<Vector> curve_points;
};

struct Node {
  NodeId id = kNoNode;
  NodeId parent = kWorld;
  NameTable::Entry name = 0;
  std::uint32_t place_in_parent = 0;
  NodeType* type = nullptr;
  bool locked = false;
  bool removal_told = false;
  std::vector<NodeId> children;  // gaps are kNoNode
  std::uint32_t child_gaps = 0;
  std::unique_ptr<Channels> channels;  // transforms
  std::unique_ptr<AnimCurve> curve;    // curves
  std::shared_ptr<const Track> track;  // tracks
  std::unique_ptr<Extras> extras;
  Inputs inputs;
  std::vector<Output> outputs;  // may hold connections that are gone
  std::size_t live_outputs = 0;
  mutable bool compiled = false;  // somebody has worked something out from the node, and must hear when it changes
};

// To look up a text in a table of strings without making a string of it.
struct TextHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const { return hash_of(text); }
};

struct Change;
struct Keys;

// Writes changes down where there is a log. Everything that edits a scene calls it: before the change for what is
// there, after it for what came.
struct Recorder {
  ChangeLog* log = nullptr;

  // A part of the scene (change.h) as it is now.
  template <class Piece, class... Of>
  void note(const Of&... of) const {
    if (log) write({Piece::now(of...)});
  }
  // Before a node is taken out, and with what was taken out.
  void goes(Graph& scene, Node& node) const {
    if (log) write_going(scene, node);
  }
  void went(std::unique_ptr<Node> node) const {
    if (log) keep(std::move(node));
  }
  // After an edit of keys, with all that there was.
  void keys(const Node& curve, Keys before) const;

 private:
  void write(Change change) const;
  void write_going(Graph& scene, Node& node) const;
  void keep(std::unique_ptr<Node> node) const;
};

// How often what evaluation reads has changed. Whoever keeps something derived from it keeps the count with it, and
// makes it again when the counts differ. They start at 1, so that 0 is never current.
struct ChangeCounts {
  std::uint64_t structure = 1;  // nodes, connections, parents
  std::uint64_t values = 1;     // those, and static values
  std::uint64_t motion = 1;     // those, and curves
};

struct Graph {
  Graph();

  Settings settings;
  Recorder recorder;

  // --- nodes; an id is a place, a deleted node leaves it empty. Place 0 is the world.
  std::vector<std::unique_ptr<Node>> nodes;
  NameTable names;
  AttributeNames attributes;
  std::deque<NodeType> types;
  std::unordered_map<std::string_view, NodeType*> types_by_name;

  std::unordered_set<std::string, TextHash, std::equal_to<>> namespaces;  // each with those above it; without the root

  // --- messages and warnings
  SceneListener listener;
  std::vector<Warning> warnings;
  std::unordered_map<std::string, std::size_t> warning_places;

  // --- what changed
  std::uint64_t revision = 1;  // anything that SceneChanges::revision promises
  ChangeCounts counts;

  const Node* find(NodeId id) const { return id < nodes.size() ? nodes[id].get() : nullptr; }
  Node* find(NodeId id) { return id < nodes.size() ? nodes[id].get() : nullptr; }
  // Throws host::Error for a node that does not exist.
  const Node& at(NodeId id) const;
  Node& at(NodeId id) { return changing(std::as_const(*this).at(id)); }
  // As at, for a node with channels.
  const Node& transform(NodeId id) const;
  Node& transform(NodeId id) { return changing(std::as_const(*this).transform(id)); }
  const Node& curve(NodeId id) const;
  Node& curve(NodeId id) { return changing(std::as_const(*this).curve(id)); }
  static bool is_dag(const Node& n) { return n.type->category <= Category::shape; }
  NodeType& type(std::string_view name);
  // The same type in another category.
  NodeType& variant(NodeType& type, Category category);
  const std::string& text(const Node& n) const { return names.text(n.name); }
  std::string unique_name(const Node& n) const;
  // `name` without a namespace, as it is in the current one.
  std::string in_current_namespace(std::string_view name) const;
  // Makes the namespace that a name is in, and those above it.
  void make_namespace_of(std::string_view name);
  std::string plug_name(const Node& n, AttributeId attribute) const;
  std::string plug_name(const Node& n, std::string_view attribute) const;
  Affine offset_parent_matrix(const Node& n) const;
  static Extras& extras(Node& n);
  static void store(Node& n, AttributeId attribute, host::Value value);
  // Closes the gaps in a node's list of children.
  void compact_children(Node& n);
  // The input that drives the attribute: its own, or its compound's.
  const Input* driver(const Node& n, AttributeId attribute) const;
  // The static value of an attribute that is not a channel; null where neither node nor type has one.
  const host::Value* stored(const Node& n, AttributeId attribute) const;
  // Whether an output is still connected.
  bool connection_stands(const Node& source, const Output& output) const;
  // To be called when a connection from the node was undone.
  void remove_output(Node& source);
  // The connections that leave the node.
  std::vector<Output> outputs_of(const Node& n) const;

  // The settings, to be changed.
  Settings& change_settings();

  // --- edits; each bumps what it has to
  void structure_changed() { ++counts.structure, values_changed(); }
  void values_changed() { ++counts.values, curves_changed(); }
  void curves_changed() { ++counts.motion, ++revision; }

  void tell_curve_edited(NodeId curve, bool keys);

 private:
  static Node& changing(const Node& n) { return const_cast<Node&>(n); }  // where the graph may be changed
};

// The error for a plug that is locked or driven; `plug` is "node.attribute".
host::Error locked_error(const std::string& plug);
host::Error missing_error(std::string_view name);

}  // namespace vantorelix::standalone
