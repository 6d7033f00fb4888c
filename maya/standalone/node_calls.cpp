// Nodes: finding, naming, making, moving and deleting them.
#include "host/error.h"
#include "maya/standalone/calls.h"
#include "standalone/host/host_state.h"
#include "standalone/host/plugins.h"

namespace vantorelix::standalone {

using host::Error;
using host::Value;

namespace {

Value create_node(Session& session, const Arguments& a) {
  Scene& scene = session.scene();
  const std::string& type = a.text(0);
  if (!scene.nodes.is_registered_type(type)) throw Error("Unknown object type: " + type);
  const NodeId node = scene.nodes.create(type, scene.namespaces.name_for_new(a.text(1)), a.has(2) ? a.node(2) : kWorld);
  return node_or_none(node);
}

Value create_curve(Session& session, const Arguments& a) {
  const auto& numbers = a.list(1);
  std::vector<Vector> points(numbers.size() / 3);
  for (std::size_t i = 0; i < points.size(); ++i)
    points[i] = {numbers[3 * i].to_float(), numbers[3 * i + 1].to_float(), numbers[3 * i + 2].to_float()};
  return session.host().cmds().curve(a.value(0), points, a.text(2));
}

// The node, its new name, and whether a relative namespace in that counts: the name that it got, and whether one was
// dropped.
Value rename(Session& session, const Arguments& a) {
  const NewName wanted = session.scene().namespaces.name_for_renamed(a.text(1), a.flag(2));
  return Value::list({session.scene().nodes.rename(a.node(0), wanted.text), wanted.dropped});
}

// As ls counts: a joint is a transform, too.
Value nodes_of_type(Session& session, const Arguments& a) {
  std::vector<NodeId> nodes;
  for (const std::string& name : session.host().cmds().ls_type(a.text(0)))
    nodes.push_back(session.scene().names.require(name));
  return list_of(nodes);
}

Value parent_of(Session& session, const Arguments& a) {
  const NodeId parent = session.scene().nodes.parent(a.node(0));
  return parent == kWorld ? Value() : node_or_none(parent);
}

Value selection_set(Session& session, const Arguments& a) {
  std::vector<NodeId> nodes;
  for (const Value& node : a.list(0)) nodes.push_back(static_cast<NodeId>(node.to_int()));
  session.host().select(nodes);
  return {};
}

}  // namespace

const Calls& node_calls() {
  static const Calls calls = {
      // By name: one node, or an error; every one that a pattern matches; whether there is any.
      {"named", [](Session& s, const Arguments& a) { return node_or_none(node_named(s.scene(), a.text(0))); }},
      {"match", [](Session& s, const Arguments& a) { return list_of(s.scene().names.match(a.text(0))); }},
      {"obj_exists", [](Session& s, const Arguments& a) { return Value(s.host().cmds().objExists(a.text(0))); }},
      {"all_nodes", [](Session& s, const Arguments&) { return list_of(s.scene().nodes.all()); }},
      {"nodes_of_type", nodes_of_type},

      {"type", [](Session& s, const Arguments& a) { return Value(s.scene().nodes.type(a.node(0))); }},
      {"is_transform", [](Session& s, const Arguments& a) { return Value(s.scene().nodes.is_transform(a.node(0))); }},
      {"is_shape", [](Session& s, const Arguments& a) { return Value(s.scene().nodes.is_shape(a.node(0))); }},
      {"is_curve", [](Session& s, const Arguments& a) { return Value(s.scene().curves.is_curve(a.node(0))); }},
      {"short_name", [](Session& s, const Arguments& a) { return Value(s.scene().names.short_name(a.node(0))); }},
      {"long_name", [](Session& s, const Arguments& a) { return Value(s.scene().names.long_name(a.node(0))); }},
      {"unique_name", [](Session& s, const Arguments& a) { return Value(s.scene().names.unique_name(a.node(0))); }},
      {"parent", parent_of},
      {"children", [](Session& s, const Arguments& a) { return list_of(s.scene().nodes.children(a.node(0))); }},
      {"shapes", [](Session& s, const Arguments& a) { return list_of(s.scene().nodes.shapes(a.node(0))); }},
      {"not_followed",
       [](Session& s, const Arguments& a) { return list_of(s.scene().evaluation.not_followed(a.node(0))); }},

      {"create_node", create_node},
      {"create_curve", create_curve},
      {"rename", rename},
      {"set_parent",
       [](Session& s, const Arguments& a) {
         s.scene().nodes.set_parent(a.node(0), a.has(1) ? a.node(1) : kWorld);
         return Value();
       }},
      {"delete", [](Session& s, const Arguments& a) { return s.scene().nodes.remove(a.node(0)), Value(); }},
      {"lock_node", [](Session& s, const Arguments& a) { return s.scene().nodes.lock(a.node(0), a.flag(1)), Value(); }},

      // Namespaces are named from the root, without a colon in front; the root is "".
      {"namespaces", [](Session& s, const Arguments&) { return list_of(s.scene().namespaces.all()); }},
      {"namespace", [](Session& s, const Arguments&) { return Value(s.scene().namespaces.current()); }},
      {"set_namespace",
       [](Session& s, const Arguments& a) { return s.scene().namespaces.set_current(a.text(0)), Value(); }},
      {"add_namespace", [](Session& s, const Arguments& a) { return s.scene().namespaces.add(a.text(0)), Value(); }},
      {"remove_namespace",
       [](Session& s, const Arguments& a) { return s.scene().namespaces.remove(a.text(0)), Value(); }},
      {"nodes_in_namespace",
       [](Session& s, const Arguments& a) { return list_of(s.scene().namespaces.nodes_in(a.text(0))); }},

      {"selection", [](Session& s, const Arguments&) { return list_of(s.host().selection()); }},
      {"select", selection_set},
  };
  return calls;
}

}  // namespace vantorelix::standalone
