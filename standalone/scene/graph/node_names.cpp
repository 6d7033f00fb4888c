#include "standalone/scene/graph/node_names.h"

#include <algorithm>

#include "base/pattern.h"
#include "standalone/scene/graph/graph.h"

namespace vantorelix::standalone {
namespace {

std::string_view last_part(std::string_view path) { return path.substr(path.rfind('|') + 1); }

// Whether the node's path ends with one that the pattern matches, part by part; is it where the pattern starts with a
// bar.
bool path_matches(const Graph& scene, const Node& node, std::string_view pattern) {
  const Node* at = &node;
  while (true) {
    const std::string_view part = last_part(pattern);
    if (at == nullptr || !matches(part, scene.text(*at))) return false;
    if (part.size() == pattern.size()) return true;
    at = at->parent == kWorld ? nullptr : scene.find(at->parent);
    pattern.remove_suffix(part.size() + 1);
    if (pattern.empty()) return at == nullptr && scene.is_dag(node);
  }
}

// The same for one path, at one comparison a part.
bool path_ends_with(const Graph& scene, const Node& node, std::string_view path) {
  for (const Node* at = &node;; at = scene.find(at->parent)) {
    const std::string& text = scene.text(*at);
    if (!path.ends_with(text)) return false;
    path.remove_suffix(text.size());
    if (path.empty()) return true;
    if (path.back() != '|') return false;
    path.remove_suffix(1);
    if (path.empty() || at->parent == kWorld) return path.empty() && at->parent == kWorld && scene.is_dag(node);
  }
}

// From the world down, one look-up a part: for names that many nodes have.
NodeId walk_down(const Graph& scene, std::string_view path) {
  NodeId at = kWorld;
  while (at != kNoNode && !path.empty()) {
    path.remove_prefix(1);
    const std::string_view part = path.substr(0, path.find('|'));
    const NameTable::Entry name = scene.names.find(part);
    at = name == NameTable::kNone ? kNoNode : scene.names.in_scope(at, name);
    path.remove_prefix(part.size());
  }
  return at;
}

}  // namespace

std::string Graph::unique_name(const Node& n) const {
  std::string path = text(n);
  if (!is_dag(n) || names.nodes(n.name).size() < 2) return path;
  // Those that look the same so far, each at its ancestor of the level reached.
  std::vector<const Node*> rivals;
  for (const NodeId id : names.nodes(n.name))
    if (id != n.id) rivals.push_back(find(id));
  const Node* at = &n;
  while (!rivals.empty() && at->parent != kWorld) {
    at = find(at->parent);
    path = text(*at) + "|" + path;
    std::vector<const Node*> left;
    for (const Node* rival : rivals) {
      const Node* above = rival->parent == kWorld ? nullptr : find(rival->parent);
      if (above && above->name == at->name) left.push_back(above);
    }
    rivals = std::move(left);
  }
  return rivals.empty() ? path : "|" + path;
}

std::string_view SceneNames::short_name(NodeId node) const { return graph().text(graph().at(node)); }

std::string SceneNames::long_name(NodeId id) const {
  const Node* node = &graph().at(id);
  if (!graph().is_dag(*node)) return graph().text(*node);
  std::size_t length = 0;
  for (const Node* at = node; at->id != kWorld; at = graph().find(at->parent)) length += 1 + graph().text(*at).size();
  std::string name(length, '|');
  for (; node->id != kWorld; node = graph().find(node->parent)) {
    const std::string& part = graph().text(*node);
    length -= part.size();
    part.copy(name.data() + length, part.size());
    --length;
  }
  return name;
}

std::string SceneNames::unique_name(NodeId node) const { return graph().unique_name(graph().at(node)); }

NodeId SceneNames::find(std::string_view name) const {
  const Graph& d = graph();
  name = without_root(name);
  const NameTable::Entry last = d.names.find(last_part(name));
  if (last == NameTable::kNone) return kNoNode;
  const std::span<const NodeId> candidates = d.names.nodes(last);
  if (name.starts_with('|') && candidates.size() > 1) return walk_down(d, name);
  NodeId found = kNoNode;
  for (const NodeId candidate : candidates) {
    if (!path_ends_with(d, *d.find(candidate), name)) continue;
    if (found != kNoNode) throw host::Error("More than one object matches name: " + std::string(name));
    found = candidate;
  }
  return found;
}

NodeId SceneNames::require(std::string_view name) const {
  const NodeId node = find(name);
  if (node == kNoNode) throw missing_error(name);
  return node;
}

std::vector<NodeId> SceneNames::match(std::string_view pattern) const {
  const Graph& d = graph();
  pattern = without_root(pattern);
  std::vector<NodeId> found;
  const auto consider = [&](NodeId id) {
    if (path_matches(d, *d.find(id), pattern)) found.push_back(id);
  };
  const std::string_view name = last_part(pattern);
  if (name.find_first_of("*?") == std::string_view::npos) {
    const NameTable::Entry last = d.names.find(name);
    if (last != NameTable::kNone)
      for (const NodeId id : d.names.nodes(last)) consider(id);
    std::sort(found.begin(), found.end());
  } else {
    for (NodeId id = kWorld + 1; id < d.nodes.size(); ++id)
      if (d.nodes[id]) consider(id);
  }
  return found;
}

}  // namespace vantorelix::standalone
