#include "standalone/scene/graph/node_places.h"

#include <algorithm>
#include <utility>

namespace vantorelix::standalone {
namespace {

void number_from(Graph& scene, const std::vector<NodeId>& siblings, std::size_t first) {
  for (std::size_t i = first; i < siblings.size(); ++i)
    if (siblings[i] != kNoNode) scene.nodes[siblings[i]]->place_in_parent = static_cast<std::uint32_t>(i);
}

// The list of a type's nodes keeps what is gone until that is more than half of it.
void leave_type(const Graph& scene, const Node& gone) {
  NodeType& type = *gone.type;
  if (type.nodes.back() == gone.id) {
    type.nodes.pop_back();
  } else if (2 * ++type.gone > type.nodes.size()) {
    std::erase_if(type.nodes, [&](NodeId id) { return scene.find(id) == nullptr; });
    type.gone = 0;
  }
}

}  // namespace

NodeId scope_of(const Graph& scene, const Node& node) {
  return scene.is_dag(node) ? node.parent : NameTable::kGlobalScope;
}

void attach(Graph& scene, Node& node, NodeId before) {
  Node& parent = *scene.nodes[node.parent];
  std::vector<NodeId>& siblings = parent.children;
  const Node* const next = before == kNoNode ? nullptr : scene.find(before);
  std::size_t place =
      next && next->parent == node.parent && scene.is_dag(*next) ? next->place_in_parent : siblings.size();
  if (place < siblings.size() && place > 0 && siblings[place - 1] == kNoNode) {
    siblings[--place] = node.id;
    --parent.child_gaps;
    node.place_in_parent = static_cast<std::uint32_t>(place);
    return;
  }
  siblings.insert(siblings.begin() + static_cast<std::ptrdiff_t>(place), node.id);
  number_from(scene, siblings, place);
}

void detach(Graph& scene, const Node& node) {
  Node& parent = *scene.nodes[node.parent];
  std::vector<NodeId>& siblings = parent.children;
  siblings[node.place_in_parent] = kNoNode;
  ++parent.child_gaps;
  for (; !siblings.empty() && siblings.back() == kNoNode; --parent.child_gaps) siblings.pop_back();
  if (2 * parent.child_gaps > siblings.size()) scene.compact_children(parent);
}

NodeId sibling_after(const Graph& scene, const Node& node) {
  if (!scene.is_dag(node)) return kNoNode;
  const std::vector<NodeId>& siblings = scene.nodes[node.parent]->children;
  const auto after = siblings.begin() + static_cast<std::ptrdiff_t>(node.place_in_parent) + 1;
  const auto next = std::find_if(after, siblings.end(), [](NodeId id) { return id != kNoNode; });
  return next == siblings.end() ? kNoNode : *next;
}

std::unique_ptr<Node> take_out(Graph& scene, NodeId id) {
  Node& node = *scene.find(id);
  for (const Output& out : scene.outputs_of(node)) scene.find(out.destination)->inputs.remove(out.attribute);
  node.outputs.clear();
  node.live_outputs = 0;
  if (scene.is_dag(node)) detach(scene, node);
  scene.names.remove(scope_of(scene, node), node.name, id);
  std::unique_ptr<Node> out = std::move(scene.nodes[id]);
  leave_type(scene, *out);
  // Only now: what its sources see of it must not stand any more.
  for (const Input& input : out->inputs.all())
    if (Node* source = input.source == kNoNode ? nullptr : scene.find(input.source)) scene.remove_output(*source);
  out->compiled = false;
  ++scene.revision;
  return out;
}

void put_in(Graph& scene, std::unique_ptr<Node> back, const std::string& name, NodeId before) {
  Node& node = *back;
  scene.nodes[node.id] = std::move(back);
  const NodeId scope = scope_of(scene, node);
  node.name = scene.names.add(scope, scene.names.free_name(scope, name), node.id);
  std::vector<NodeId>& of_type = node.type->nodes;
  const auto place = std::lower_bound(of_type.begin(), of_type.end(), node.id);
  if (place == of_type.end() || *place != node.id) {
    of_type.insert(place, node.id);
  } else {
    --node.type->gone;
  }
  if (scene.is_dag(node)) attach(scene, node, before);
  for (const Input& input : std::vector<Input>(node.inputs.all())) {
    if (input.source == kNoNode) continue;
    Node* const source = scene.find(input.source);
    if (source == nullptr) {
      node.inputs.remove(input.attribute);
      continue;
    }
    source->outputs.push_back({node.id, input.attribute});
    ++source->live_outputs;
  }
  node.removal_told = false;
  if (node.curve) node.curve->set_frames_per_second(scene.settings.frames_per_second);
  ++scene.revision;
}

std::vector<NodeId> with_descendants(const Graph& scene, NodeId root) {
  std::vector<NodeId> all = {root};
  for (std::size_t next = 0; next < all.size(); ++next)
    for (const NodeId child : scene.find(all[next])->children)
      if (child != kNoNode) all.push_back(child);
  return all;
}

bool is_below(const Graph& scene, NodeId node, NodeId ancestor) {
  for (NodeId n = node; n != kWorld; n = scene.find(n)->parent)
    if (n == ancestor) return true;
  return false;
}

}  // namespace vantorelix::standalone
