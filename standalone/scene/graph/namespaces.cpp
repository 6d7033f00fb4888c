#include "standalone/scene/graph/namespaces.h"

#include <algorithm>

#include "standalone/scene/graph/change.h"

namespace vantorelix::standalone {
namespace {

// What stands before the last colon; empty for the root.
std::string_view namespace_of(std::string_view name) {
  const std::size_t colon = name.rfind(':');
  return name.substr(0, colon == std::string_view::npos ? 0 : colon);
}

std::string_view without_namespace(std::string_view name) { return name.substr(name.rfind(':') + 1); }

host::Error no_namespace(std::string_view name) {
  return host::Error("No namespace matches name: '" + std::string(name) + "'.");
}

}  // namespace

std::string Graph::in_current_namespace(std::string_view name) const {
  const std::string& current = settings.current_namespace;
  return current.empty() ? std::string(name) : current + ":" + std::string(name);
}

void Graph::make_namespace_of(std::string_view name) {
  for (name = namespace_of(name); !name.empty() && !namespaces.contains(name); name = namespace_of(name)) {
    recorder.note<NamespacePresence>(*this, name);
    namespaces.emplace(name);
  }
}

bool SceneNamespaces::has(std::string_view name) const { return name.empty() || graph().namespaces.contains(name); }

void SceneNamespaces::add(std::string_view name) { graph().make_namespace_of(legal_name(name) + ":"); }

void SceneNamespaces::remove(std::string_view name) {
  Graph& d = graph();
  const auto found = d.namespaces.find(name);
  const std::string shown = "'" + std::string(name) + "'";
  if (found == d.namespaces.end()) throw no_namespace(name);
  if (name == d.settings.current_namespace)
    throw host::Error("The namespace " + shown + " is current and cannot be removed.");
  const auto is_in_it = [&](std::string_view other) { return namespace_of(other) == name; };
  if (std::any_of(d.namespaces.begin(), d.namespaces.end(), is_in_it) || !nodes_in(name).empty())
    throw host::Error("The namespace " + shown + " is not empty and cannot be removed.");
  d.recorder.note<NamespacePresence>(d, name);
  d.namespaces.erase(found);
}

const std::string& SceneNamespaces::current() const { return graph().settings.current_namespace; }

void SceneNamespaces::set_current(std::string_view name) {
  if (!has(name)) throw no_namespace(name);
  graph().change_settings().current_namespace = name;
}

std::vector<std::string> SceneNamespaces::all() const {
  std::vector<std::string> names(graph().namespaces.begin(), graph().namespaces.end());
  std::sort(names.begin(), names.end());
  return names;
}

std::vector<NodeId> SceneNamespaces::nodes_in(std::string_view name) const {
  std::vector<NodeId> found;
  for (const auto& node : graph().nodes)
    if (node && node->id != kWorld && namespace_of(graph().text(*node)) == name) found.push_back(node->id);
  return found;
}

std::string SceneNamespaces::name_for_new(std::string_view name) const {
  if (name.empty() || name.find(':') != std::string_view::npos) return std::string(without_root(name));
  return graph().in_current_namespace(name);
}

NewName SceneNamespaces::name_for_renamed(std::string_view name, bool relative_counts) const {
  if (without_namespace(name).empty()) throw host::Error("New name has no legal characters.");
  if (name.starts_with(':')) return {std::string(without_root(name))};
  const std::string relative = graph().in_current_namespace(name);
  if (relative_counts && has(namespace_of(relative))) return {relative};
  return {graph().in_current_namespace(without_namespace(name)), relative_counts};
}

}  // namespace vantorelix::standalone
