#include "standalone/scene/graph/nodes.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

#include "standalone/scene/attributes/node_types.h"
#include "standalone/scene/graph/change.h"
#include "standalone/scene/graph/graph.h"
#include "standalone/scene/graph/node_places.h"

namespace vantorelix::standalone {
namespace {

// Enters a node whose name is free.
Node& enter(Graph& scene, NodeType& type, std::string_view name, NodeId parent) {
  auto fresh = std::make_unique<Node>();
  Node& node = *fresh;
  node.id = static_cast<NodeId>(scene.nodes.size());
  node.parent = parent;
  node.type = &type;
  if (type.category <= Category::constraint) node.channels = std::make_unique<Channels>(kRestChannels);
  CurveKind kind{};
  if (is_curve_type(type.name, kind)) node.curve = std::make_unique<AnimCurve>(kind, scene.settings.frames_per_second);
  scene.nodes.push_back(std::move(fresh));
  scene.make_namespace_of(name);
  node.name = scene.names.add(scope_of(scene, node), name, node.id);
  type.nodes.push_back(node.id);
  if (scene.is_dag(node)) attach(scene, node);
  ++scene.revision;
  scene.recorder.note<Presence>(node);
  return node;
}

Node& make(Graph& scene, NodeType& type, std::string_view name, NodeId parent) {
  const NodeId scope = type.category <= Category::shape ? parent : NameTable::kGlobalScope;
  return enter(scene, type, scene.names.free_name(scope, legal_name(name)), parent);
}

// "polySurface1" and "polySurfaceShape1" get the same number where they can.
std::string default_name(Graph& scene, const NodeType& type) {
  const std::string first = scene.in_current_namespace(std::string(default_stem(type.name)) + "1");
  return scene.names.free_name(NameTable::kGlobalScope, first, true);
}

std::string shape_name_for(std::string_view transform) {
  const std::size_t end = transform.find_last_not_of("0123456789") + 1;
  return std::string(transform.substr(0, end)) + "Shape" + std::string(transform.substr(end));
}

Node& make_with_default_name(Graph& scene, NodeType& type, NodeId parent) {
  const std::string name = default_name(scene, type);
  if (type.category != Category::shape) return make(scene, type, name, parent);
  return make(scene, type, shape_name_for(parent == kWorld ? name : scene.text(scene.at(parent))), parent);
}

void rename_to(Graph& scene, Node& node, const std::string& wanted) {
  const NodeId scope = scope_of(scene, node);
  const std::string before = scene.text(node);
  scene.recorder.note<Place>(scene, node);
  scene.names.remove(scope, node.name, node.id);
  std::string name;
  try {
    name = scene.names.free_name(scope, wanted);
  } catch (...) {
    name = before;
  }
  scene.make_namespace_of(name);
  node.name = scene.names.add(scope, name, node.id);
}

// A transform takes its only shape along when that one bears its name: "ballShape", or "ballShape1" under "ball1".
void rename_shape_along(Graph& scene, const Node& transform, const std::string& before) {
  Node* only = nullptr;
  for (const NodeId child : transform.children) {
    Node* node = scene.find(child);
    if (!node || node->type->category != Category::shape) continue;
    if (only) return;
    only = node;
  }
  if (!only || only->locked) return;
  const std::string& name = scene.text(*only);
  if (name == before + "Shape" || name == shape_name_for(before))
    rename_to(scene, *only, shape_name_for(scene.text(transform)));
}

// What drove only this node, and is there to drive.
void find_orphans(const Graph& scene, const Node& node, std::vector<NodeId>& orphans) {
  for (const Input& input : node.inputs.all()) {
    const Node* source = input.source == kNoNode ? nullptr : scene.find(input.source);
    if (!source) continue;
    const bool helper = source->type->category == Category::curve || source->type->names == NameSet::curve ||
                        source->type->names == NameSet::unit_conversion || source->type->names == NameSet::pair_blend;
    if (helper && !scene.is_dag(*source) && source->live_outputs == 0 && !source->locked) orphans.push_back(source->id);
  }
}

// Whether anything compiled may hang on the node. What nobody samples can come, move and go without making a sampled
// node's remembered matrices void.
bool is_felt(const Node& node) { return node.compiled || node.live_outputs > 0; }

void remove_one(Graph& scene, NodeId id, std::vector<NodeId>& orphans) {
  if (!scene.find(id)) return;
  // A listener may delete more, this very node included; that one is not told twice.
  if (scene.listener.node_removed && !std::exchange(scene.find(id)->removal_told, true)) {
    const std::string type = scene.find(id)->type->name;
    scene.listener.node_removed(id, type);
    if (!scene.find(id)) return;
  }
  const bool felt = is_felt(*scene.find(id));
  scene.recorder.goes(scene, *scene.find(id));
  std::unique_ptr<Node> gone = take_out(scene, id);
  find_orphans(scene, *gone, orphans);
  scene.recorder.went(std::move(gone));
  if (felt) scene.structure_changed();
}

// A type that nobody knows hangs in the DAG when it is given a parent: as a shape when it is called one.
NodeType& type_under(Graph& scene, std::string_view type, std::string_view name, NodeId parent) {
  NodeType& known = scene.type(type);
  if (known.category != Category::other || parent == kWorld) return known;
  const bool shape = type.ends_with("Shape") || name.find("Shape") != std::string_view::npos;
  return scene.variant(known, shape ? Category::shape : Category::constraint);
}

}  // namespace

Graph::Graph() {
  nodes.push_back(std::make_unique<Node>());
  nodes[kWorld]->id = kWorld;
  nodes[kWorld]->type = &types.emplace_back(NodeType{"world", Category::other, NameSet::other});
}

NodeType& Graph::type(std::string_view name) {
  const auto found = types_by_name.find(name);
  if (found != types_by_name.end()) return *found->second;
  const Category category = category_of(name);
  NodeType& fresh = types.emplace_back(NodeType{std::string(name), category, name_set_of(name, category)});
  fresh.next = &fresh;
  types_by_name.emplace(fresh.name, &fresh);
  return fresh;
}

NodeType& Graph::variant(NodeType& type, Category category) {
  NodeType* t = &type;
  for (;; t = t->next) {
    if (t->category == category) return *t;
    if (t->next == &type) break;
  }
  NodeType& fresh =
      types.emplace_back(NodeType{type.name, category, name_set_of(type.name, category), {}, 0, type.values, &type});
  return *(t->next = &fresh);
}

NodeId SceneNodes::create(std::string_view type_name, std::string_view name, NodeId parent) {
  Graph& d = graph();
  if (type_name.empty()) throw host::Error("A node needs a type.", host::ErrorKind::value);
  if (parent != kWorld && !d.at(parent).channels)
    throw host::Error("'" + d.unique_name(d.at(parent)) + "' cannot have children.");
  NodeType& type = type_under(d, type_name, name, parent);
  if (type.category > Category::shape) parent = kWorld;
  if (type.category == Category::shape && parent == kWorld) {
    const std::string transform = default_name(d, type);
    parent = make(d, d.type("transform"), transform, kWorld).id;
    if (name.empty()) return make(d, type, shape_name_for(d.text(d.at(parent))), parent).id;
  }
  return (name.empty() ? make_with_default_name(d, type, parent) : make(d, type, name, parent)).id;
}

void SceneNodes::register_shape_type(std::string_view name,
                                     std::span<const std::pair<std::string_view, host::Value>> attributes) {
  // Nodes that were there before stay what they are: they hang in no DAG.
  NodeType* type = &graph().type(name);
  if (type->category == Category::other)
    type = graph().types_by_name[type->name] = &graph().variant(*type, Category::shape);
  Values values;
  for (const auto& [attribute, value] : attributes)
    values.emplace_back(graph().attributes.intern(type->names, attribute), value);
  std::sort(values.begin(), values.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  const NodeType* const first = type;
  do type->values = values;
  while ((type = type->next) != first);
}

bool SceneNodes::is_registered_type(std::string_view name) const {
  const auto found = graph().types_by_name.find(name);
  return (found == graph().types_by_name.end() ? category_of(name) : found->second->category) != Category::other;
}

void SceneNodes::remove(NodeId id) {
  Graph& d = graph();
  d.at(id);
  const std::vector<NodeId> doomed = with_descendants(d, id);
  for (const NodeId n : doomed)
    if (d.find(n)->locked)
      throw host::Error("Node '" + d.unique_name(*d.find(n)) + "' is locked and cannot be deleted.");
  std::vector<NodeId> orphans;
  for (auto n = doomed.rbegin(); n != doomed.rend(); ++n) remove_one(d, *n, orphans);
  for (std::size_t i = 0; i < orphans.size(); ++i) {
    const NodeId orphan = orphans[i];
    if (d.find(orphan)) remove_one(d, orphan, orphans);
  }
}

std::string SceneNodes::rename(NodeId id, std::string_view name) {
  Graph& d = graph();
  Node& node = d.at(id);
  if (node.locked) throw host::Error("Node '" + d.unique_name(node) + "' is locked and cannot be renamed.");
  name = without_root(name);
  if (name.empty()) throw host::Error("New name has no legal characters.");
  const std::string wanted = legal_name(name);
  const std::string before = d.text(node);
  if (wanted != before) {
    rename_to(d, node, wanted);
    if (node.channels) rename_shape_along(d, node, before);
    ++d.revision;
  }
  return d.unique_name(node);
}

void SceneNodes::set_parent(NodeId id, NodeId parent) {
  Graph& d = graph();
  Node& node = d.at(id);
  if (!d.is_dag(node)) throw host::Error("'" + d.unique_name(node) + "' cannot have a parent.");
  if (node.locked) throw host::Error("Node '" + d.unique_name(node) + "' is locked and cannot be reparented.");
  if (parent == node.parent) return;
  if (parent == kWorld && !node.channels) throw host::Error("Shapes cannot be parented to the world.");
  if (parent != kWorld) {
    if (!d.at(parent).channels) throw host::Error("'" + d.unique_name(d.at(parent)) + "' cannot have children.");
    if (is_below(d, parent, id)) throw host::Error("Cannot parent an object to itself or one of its children.");
  }
  d.recorder.note<Place>(d, node);
  std::string name = d.text(node);
  d.names.remove(node.parent, node.name, id);
  detach(d, node);
  node.parent = parent;
  attach(d, node);
  node.name = d.names.add(parent, d.names.free_name(parent, std::move(name)), id);
  ++d.revision;
  const std::vector<NodeId> moved = with_descendants(d, id);
  if (std::any_of(moved.begin(), moved.end(), [&](NodeId n) { return is_felt(*d.find(n)); })) d.structure_changed();
}

void SceneNodes::lock(NodeId id, bool locked) {
  Node& node = graph().at(id);
  graph().recorder.note<NodeLock>(node);
  node.locked = locked;
}

bool SceneNodes::exists(NodeId node) const { return node != kWorld && graph().find(node) != nullptr; }
const std::string& SceneNodes::type(NodeId node) const { return graph().at(node).type->name; }
bool SceneNodes::is_transform(NodeId node) const { return graph().at(node).channels != nullptr; }
bool SceneNodes::is_shape(NodeId node) const { return graph().at(node).type->category == Category::shape; }
NodeId SceneNodes::parent(NodeId node) const { return graph().at(node).parent; }

std::vector<NodeId> SceneNodes::children(NodeId node) const {
  const Node& parent = node == kWorld ? *graph().nodes[kWorld] : graph().at(node);
  std::vector<NodeId> found;
  found.reserve(parent.children.size() - parent.child_gaps);
  std::copy_if(parent.children.begin(), parent.children.end(), std::back_inserter(found),
               [](NodeId child) { return child != kNoNode; });
  return found;
}

std::vector<NodeId> SceneNodes::shapes(NodeId transform) const {
  std::vector<NodeId> found;
  for (const NodeId child : children(transform))
    if (is_shape(child)) found.push_back(child);
  return found;
}

std::vector<NodeId> SceneNodes::all() const {
  std::vector<NodeId> all;
  for (NodeId id = kWorld + 1; id < graph().nodes.size(); ++id)
    if (graph().nodes[id]) all.push_back(id);
  return all;
}

std::vector<NodeId> SceneNodes::of_type(std::string_view name) const {
  std::vector<NodeId> found;
  const auto at = graph().types_by_name.find(name);
  if (at == graph().types_by_name.end()) return found;
  const NodeType* type = at->second;
  do {
    std::copy_if(type->nodes.begin(), type->nodes.end(), std::back_inserter(found),
                 [&](NodeId id) { return graph().find(id) != nullptr; });
    type = type->next;
  } while (type != at->second);
  std::sort(found.begin(), found.end());
  return found;
}

}  // namespace vantorelix::standalone
