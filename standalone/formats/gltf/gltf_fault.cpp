// What is wrong with glTF that the library refuses without saying why.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "standalone/formats/gltf/gltf_document.h"

namespace vantorelix::standalone {
namespace {

using nlohmann::json;

// A list inside an object; an empty one where there is none.
const json& list(const json& object, const char* name) {
  static const json kNone = json::array();
  const auto found = object.is_object() ? object.find(name) : object.end();
  return found != object.end() && found->is_array() ? *found : kNone;
}

// Whether a list element is the number of a node.
bool is_node(const json& element, std::size_t count) {
  return element.is_number_unsigned() && element.get<std::uint64_t>() < count;
}

// Fills `parents`, a node without one having the number of nodes.
std::string child_fault(const json& nodes, std::vector<std::size_t>& parents) {
  parents.assign(nodes.size(), nodes.size());
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const std::string node = "node " + std::to_string(i);
    for (const json& child : list(nodes[i], "children")) {
      if (!is_node(child, nodes.size())) {
        return node + " has the child " + child.dump() + ", and there is no such node";
      }
      std::size_t& parent = parents[child.get<std::size_t>()];
      if (parent != nodes.size()) {
        return "node " + child.dump() + " is a child of node " + std::to_string(parent) + " and of " + node +
               ", but a node has one parent";
      }
      parent = i;
    }
  }
  const std::size_t circle = find_circle(parents);
  return circle == nodes.size() ? std::string() : circle_text(circle);
}

std::string root_fault(const json& scenes, const std::vector<std::size_t>& parents) {
  for (const json& scene : scenes) {
    for (const json& root : list(scene, "nodes")) {
      if (!is_node(root, parents.size())) {
        return "a scene lists the node " + root.dump() + ", and there is no such node";
      }
      const std::size_t parent = parents[root.get<std::size_t>()];
      if (parent != parents.size()) {
        return "a scene lists node " + root.dump() + " at the top, but it is a child of node " + std::to_string(parent);
      }
    }
  }
  return {};
}

}  // namespace

std::size_t find_circle(const std::vector<std::size_t>& parents) {
  const std::size_t none = parents.size();
  std::vector<std::size_t> seen_from(none, none);  // the walk that came by first
  for (std::size_t i = 0; i < none; ++i) {
    for (std::size_t node = i; node != none && seen_from[node] != i; node = parents[node]) {
      if (seen_from[node] != none) break;
      seen_from[node] = i;
      if (parents[node] != none && seen_from[parents[node]] == i) return parents[node];
    }
  }
  return none;
}

std::string circle_text(std::size_t node) {
  return "node " + std::to_string(node) + " is its own ancestor: the hierarchy has a cycle";
}

GltfFault find_fault(std::string_view text) {
  json document;
  try {
    document = json::parse(text.begin(), text.end());
  } catch (const json::parse_error& error) {
    const auto at = static_cast<std::ptrdiff_t>(std::min(error.byte, text.size()));
    const auto line = static_cast<std::size_t>(std::count(text.begin(), text.begin() + at, '\n')) + 1;
    return {line,
            "the JSON text is damaged or cut off at its byte " + std::to_string(error.byte) + "; export it again"};
  } catch (const json::exception&) {
    return {0, "a number in the JSON text is too large; correct it or export again"};
  }
  std::vector<std::size_t> parents;
  std::string fault = child_fault(list(document, "nodes"), parents);
  if (fault.empty()) fault = root_fault(list(document, "scenes"), parents);
  if (fault.empty()) fault = "an index leads nowhere, or a value is of the wrong kind";
  return {0, fault + "; the file is damaged, export it again"};
}

}  // namespace vantorelix::standalone
