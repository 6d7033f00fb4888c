#include "standalone/scene/graph/graph.h"

#include <algorithm>

#include "standalone/scene/graph/change.h"

namespace vantorelix::standalone {
namespace {

template <class T>
auto place_of(const std::vector<std::pair<AttributeId, T>>& sorted, AttributeId attribute) {
  return std::lower_bound(sorted.begin(), sorted.end(), attribute,
                          [](const auto& entry, AttributeId wanted) { return entry.first < wanted; });
}

}  // namespace

host::Error locked_error(const std::string& plug) {
  return host::Error("The attribute '" + plug + "' is locked or connected and cannot be modified.");
}

host::Error missing_error(std::string_view name) {
  return host::Error("No object matches name: " + std::string(name), host::ErrorKind::value);
}

const Node& Graph::at(NodeId id) const {
  const Node* node = id == kWorld ? nullptr : find(id);
  if (node == nullptr) throw missing_error("node " + std::to_string(id));
  return *node;
}

const Node& Graph::transform(NodeId id) const {
  const Node& node = at(id);
  if (!node.channels) throw missing_error(unique_name(node) + ".worldMatrix");
  return node;
}

const Node& Graph::curve(NodeId id) const {
  const Node& node = at(id);
  if (!node.curve) throw host::Error("'" + unique_name(node) + "' is not an animation curve.");
  return node;
}

std::string Graph::plug_name(const Node& n, AttributeId attribute) const {
  return plug_name(n, attributes.text(attribute));
}

std::string Graph::plug_name(const Node& n, std::string_view attribute) const {
  return unique_name(n) + "." + std::string(attribute);
}

Extras& Graph::extras(Node& n) {
  if (!n.extras) n.extras = std::make_unique<Extras>();
  return *n.extras;
}

Affine Graph::offset_parent_matrix(const Node& n) const {
  return n.extras && n.extras->offset_parent_matrix ? *n.extras->offset_parent_matrix : Affine{};
}

void Graph::compact_children(Node& n) {
  if (n.child_gaps == 0) return;
  std::erase(n.children, kNoNode);
  n.child_gaps = 0;
  for (std::size_t i = 0; i < n.children.size(); ++i)
    nodes[n.children[i]]->place_in_parent = static_cast<std::uint32_t>(i);
}

const Input* Graph::driver(const Node& n, AttributeId attribute) const {
  if (const Input* own = n.inputs.find(attribute)) return own;
  const AttributeId compound = compound_of(attribute);
  return compound == attribute ? nullptr : n.inputs.find(compound);
}

const host::Value* Graph::stored(const Node& n, AttributeId attribute) const {
  const auto in = [attribute](const Values& values) {
    const auto at = place_of(values, attribute);
    return at != values.end() && at->first == attribute ? &at->second : nullptr;
  };
  const host::Value* const own = n.extras ? in(n.extras->values) : nullptr;
  return own ? own : in(n.type->values);
}

void Graph::store(Node& n, AttributeId attribute, host::Value value) {
  auto& values = extras(n).values;
  const auto at = values.begin() + (place_of(values, attribute) - values.cbegin());
  if (at != values.end() && at->first == attribute) {
    at->second = std::move(value);
  } else if (values.empty()) {
    values.reserve(std::max<std::size_t>(1, n.type->values.size()));
    values.emplace_back(attribute, std::move(value));
  } else {
    values.emplace(at, attribute, std::move(value));
  }
}

bool Graph::connection_stands(const Node& source, const Output& output) const {
  const Node* destination = find(output.destination);
  const Input* input = destination ? destination->inputs.find(output.attribute) : nullptr;
  return input && input->source == source.id;
}

std::vector<Output> Graph::outputs_of(const Node& n) const {
  std::vector<Output> standing;
  for (const Output& out : n.outputs)
    if (connection_stands(n, out)) standing.push_back(out);
  return standing;
}

void Graph::remove_output(Node& source) {
  --source.live_outputs;
  if (source.outputs.size() < 2 * source.live_outputs + 8) return;
  std::erase_if(source.outputs, [&](const Output& out) { return !connection_stands(source, out); });
}

void Graph::tell_curve_edited(NodeId id, bool keys) {
  curves_changed();
  if (listener.curve_edited) listener.curve_edited(id);
  if (keys && listener.keyframe_edited) listener.keyframe_edited(id);
}

Settings& Graph::change_settings() {
  recorder.note<AllSettings>(*this);
  return settings;
}

}  // namespace vantorelix::standalone
