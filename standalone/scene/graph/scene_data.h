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

#include "host/error.h"
#include "standalone/scene/attributes/attribute_names.h"
#include "standalone/scene/connections/inputs.h"
#include "standalone/scene/evaluation/records.h"
#include "standalone/scene/graph/change_log.h"
#include "standalone/scene/names/name_table.h"
#include "standalone/scene/scene.h"
#include "standalone/scene/transforms/local_matrix.h"

namespace vantorelix::standalone {

enum class Category : std::uint8_t {
  transform,   // has channels, can have children
  constraint,  // the same, but what comes out of it cannot be followed
  shape,       // hangs under a transform
  curve,       // an animation curve over time
  other        // outside the DAG
};

using Values = std::vector<std::pair<AttributeId, host::Value>>;  // ascending by attribute

struct NodeType {
  std::string name;
  Category category;
  NameSet names;
  std::vector<NodeId> nodes = {};  // ascending; may hold nodes that are gone
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
  std::unique_ptr<Record> record;  // compiled, when somebody asked
};

// To look up a text in a table of strings without making a string of it.
struct TextHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const { return hash_of(text); }
};

// What belongs to no node.
struct Settings {
  double frames_per_second = 24.0;
  std::string linear_unit = "cm";
  char up_axis = 'y';
  double playback_min = 1.0, playback_max = 24.0, current_time = 1.0;
  std::vector<Take> takes;
  std::size_t take = 0;
  std::string current_namespace;
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
  void goes(Scene::Data& scene, Node& node) const {
    if (log) write_going(scene, node);
  }
  void went(std::unique_ptr<Node> node) const {
    if (log) keep(std::move(node));
  }
  // After an edit of keys, with all that there was.
  void keys(const Node& curve, Keys before) const;

 private:
  void write(Change change) const;
  void write_going(Scene::Data& scene, Node& node) const;
  void keep(std::unique_ptr<Node> node) const;
};

struct Scene::Data {
  Data();

  Settings settings;
  Recorder recorder;

  // --- nodes; an id is a place, a deleted node leaves it empty. Place 0 is the world.
  std::vector<std::unique_ptr<Node>> nodes;
  NameTable names;
  AttributeNames attributes;
  std::deque<NodeType> types;
  std::unordered_map<std::string_view, NodeType*> types_by_name;

  std::unordered_set<std::string, TextHash, std::equal_to<>> namespaces;  // each with those above it; without the root

  // What Scene::find found last: scripts speak of the same node again and again.
  struct {
    std::string name;
    NodeId node = kNoNode;
    std::uint64_t revision = 0;  // of the scene then
  } last_found;

  // --- messages and warnings
  SceneListener listener;
  std::vector<Warning> warnings;
  std::unordered_map<std::string, std::size_t> warning_places;

  // --- what changed
  std::uint64_t revision = 1;  // anything that revision() promises
  Evaluation evaluation;

  Node* find(NodeId id) const { return id < nodes.size() ? nodes[id].get() : nullptr; }
  // Throws host::Error for a node that does not exist.
  Node& at(NodeId id) const;
  // As at, for a node with channels.
  Node& transform(NodeId id) const;
  Node& curve(NodeId id) const;
  bool is_dag(const Node& n) const { return n.type->category <= Category::shape; }
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
  Extras& extras(Node& n) const;
  Affine offset_parent_matrix(const Node& n) const;
  // Closes the gaps in a node's list of children.
  void compact_children(Node& n) const;
  // The input that drives the attribute: its own, or its compound's.
  const Input* driver(const Node& n, AttributeId attribute) const;
  // The static value of an attribute that is no channel; null where neither node nor type has one.
  const host::Value* stored(const Node& n, AttributeId attribute) const;
  void store(Node& n, AttributeId attribute, host::Value value) const;
  // Whether an output is still connected.
  bool connection_stands(const Node& source, const Output& output) const;
  // To be called when a connection from the node was undone.
  void remove_output(Node& source);
  // The connections that leave the node.
  std::vector<Output> outputs_of(const Node& n) const;

  // The settings, to be changed.
  Settings& change_settings();

  // --- edits; each bumps what it has to
  void structure_changed() { ++revision, evaluation.structure_changed(); }
  void values_changed() { ++revision, evaluation.values_changed(); }
  void curves_changed() { ++revision, evaluation.curves_changed(); }

  void tell_curve_edited(NodeId curve, bool keys);
};

// The error for a plug that is locked or driven; `plug` is "node.attribute".
host::Error locked_error(const std::string& plug);
host::Error missing_error(std::string_view name);

}  // namespace vantorelix::standalone
