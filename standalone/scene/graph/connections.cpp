#include "standalone/scene/graph/connections.h"

#include "standalone/scene/graph/change.h"

namespace vantorelix::standalone {

void SceneConnections::connect(NodeId source, std::string_view source_attribute, NodeId destination,
                               std::string_view destination_attribute) {
  Graph& d = graph();
  Node& from = d.at(source);
  Node& to = d.at(destination);
  const AttributeId in = d.attributes.intern(to.type->names, destination_attribute);
  const AttributeId out = d.attributes.intern(from.type->names, source_attribute);
  d.recorder.note<Wire>(to, in);
  if (const Input* before = to.inputs.find(in)) {
    const NodeId old = before->source;
    to.inputs.remove(in);
    if (Node* node = d.find(old)) d.remove_output(*node);
  }
  to.inputs.set({in, source, out});
  from.outputs.push_back({destination, in});
  ++from.live_outputs;
  d.structure_changed();
}

void SceneConnections::disconnect(NodeId destination, std::string_view attribute) {
  Graph& d = graph();
  Node& to = d.at(destination);
  const AttributeId in = d.attributes.find(to.type->names, attribute);
  const Input* input = in == AttributeNames::kNone ? nullptr : to.inputs.find(in);
  if (input == nullptr) return;
  const NodeId source = input->source;
  d.recorder.note<Wire>(to, in);
  to.inputs.remove(in);
  if (Node* node = d.find(source)) d.remove_output(*node);
  d.structure_changed();
}

std::vector<Connection> SceneConnections::into(NodeId node) const {
  const Graph& d = graph();
  std::vector<Connection> all;
  for (const Input& input : d.at(node).inputs.all())
    if (input.source != kNoNode)
      all.push_back({input.source, d.attributes.text(input.source_attribute), d.attributes.text(input.attribute)});
  return all;
}

}  // namespace vantorelix::standalone
