// Names and paths.
#include <algorithm>

#include "standalone/scene/scene_data.h"

namespace vantorelix::standalone {
namespace {

std::vector<std::string_view> components(std::string_view path) {
  std::vector<std::string_view> parts;
  while (true) {
    const std::size_t bar = path.find('|');
    parts.push_back(path.substr(0, bar));
    if (bar == std::string_view::npos) return parts;
    path.remove_prefix(bar + 1);
  }
}

// ":name" and "name" are the same node: the root namespace.
std::string_view without_root(std::string_view name) {
  if (name.starts_with(':')) name.remove_prefix(1);
  return name;
}

bool glob(std::string_view pattern, std::string_view text) {
  std::size_t p = 0, t = 0, star = std::string_view::npos, resume = 0;
  while (t < text.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      resume = t;
    } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == text[t])) {
      ++p, ++t;
    } else if (star != std::string_view::npos) {
      p = star + 1;
      t = ++resume;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*') ++p;
  return p == pattern.size();
}

// Whether the last components of the node's path are `parts`; all of them when it is anchored at the world.
template <class Same>
bool path_ends_with(const Scene::Data& scene, const Node& node, const std::vector<std::string_view>& parts,
                    bool anchored, Same same) {
  const Node* at = &node;
  for (std::size_t i = parts.size(); i-- > 0;) {
    if (at == nullptr || !same(parts[i], scene.text(*at))) return false;
    at = at->parent == kWorld ? nullptr : scene.find(at->parent);
  }
  return !anchored || (at == nullptr && scene.is_dag(node));
}

// From the world down, one look-up a component.
NodeId walk_down(const Scene::Data& scene, const std::vector<std::string_view>& parts) {
  NodeId at = kWorld;
  for (const std::string_view part : parts) {
    const NameTable::Entry name = scene.names.find(part);
    at = name == NameTable::kNone ? kNoNode : scene.names.in_scope(at, name);
    if (at == kNoNode) return kNoNode;
  }
  return at;
}

}  // namespace

std::string Scene::Data::unique_name(const Node& n) const {
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

std::string_view Scene::short_name(NodeId node) const { return data_->text(data_->at(node)); }

std::string Scene::long_name(NodeId id) const {
  const Node* node = &data_->at(id);
  if (!data_->is_dag(*node)) return data_->text(*node);
  std::vector<const Node*> path;
  for (; node->id != kWorld; node = data_->find(node->parent)) path.push_back(node);
  std::string name;
  for (auto at = path.rbegin(); at != path.rend(); ++at) name += "|" + data_->text(**at);
  return name;
}

std::string Scene::unique_name(NodeId node) const { return data_->unique_name(data_->at(node)); }

NodeId Scene::find(std::string_view name) const {
  const Data& d = *data_;
  name = without_root(name);
  const bool anchored = name.starts_with('|');
  const auto parts = components(anchored ? name.substr(1) : name);
  if (anchored) return walk_down(d, parts);
  const NameTable::Entry last = d.names.find(parts.back());
  if (last == NameTable::kNone) return kNoNode;
  const std::vector<NodeId>& candidates = d.names.nodes(last);
  NodeId found = kNoNode;
  for (const NodeId candidate : candidates) {
    if (parts.size() > 1 && !path_ends_with(d, *d.find(candidate), parts, false, std::equal_to<>())) continue;
    if (found != kNoNode) throw host::Error("More than one object matches name: " + std::string(name));
    found = candidate;
  }
  return found;
}

NodeId Scene::require(std::string_view name) const {
  const NodeId node = find(name);
  if (node == kNoNode) throw missing_error(name);
  return node;
}

std::vector<NodeId> Scene::match(std::string_view pattern) const {
  const Data& d = *data_;
  pattern = without_root(pattern);
  const bool anchored = pattern.starts_with('|');
  const auto parts = components(anchored ? pattern.substr(1) : pattern);
  std::vector<NodeId> found;
  const auto consider = [&](NodeId id) {
    if (path_ends_with(d, *d.find(id), parts, anchored, glob)) found.push_back(id);
  };
  if (parts.back().find_first_of("*?") == std::string_view::npos) {
    const NameTable::Entry last = d.names.find(parts.back());
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
