// Attributes and connections.
#include "maya/standalone/calls.h"
#include "standalone/host/plugins.h"
#include "standalone/host/viz_node.h"
#include "standalone/scene/attributes/channel_names.h"

namespace vantorelix::standalone {

using host::Value;

namespace {

// A channel, or each of a compound of them, as it is at a frame; anything else as it stands.
Value attribute_at(Session& session, const Arguments& a) {
  const Scene& scene = session.scene();
  const NodeId node = a.node(0);
  const auto one = [&](const std::string& name) {
    const Channel channel = channel_named(scene, node, name);
    if (channel == Channel::count || scene.curves.driving_curve(node, channel) == kNoNode)
      return scene.attributes.value(node, name);
    const double inside = scene.evaluation.channel_at(node, channel, a.number(2));
    return Value(is_angle(channel) ? inside * kDegrees : inside);
  };
  const std::vector<std::string> parts = channel_parts(scene, node, a.text(1));
  if (parts.empty()) return one(a.text(1));
  return Value::list({one(parts[0]), one(parts[1]), one(parts[2])});
}

Value connect(Session& session, const Arguments& a) {
  session.scene().connections.connect(a.node(0), a.text(1), a.node(2), a.text(3));
  return {};
}

}  // namespace

const Calls& attribute_calls() {
  static const Calls calls = {
      {"has_attribute",
       [](Session& s, const Arguments& a) { return Value(s.scene().attributes.has(a.node(0), a.text(1))); }},
      {"attribute_at", attribute_at},
      // The command: a whole path, checked and converted.
      {"set_attr",
       [](Session& s, const Arguments& a) { return s.host().cmds().setAttr(a.text(0), a.value(1)), Value(); }},
      {"add_attribute",
       [](Session& s, const Arguments& a) {
         return s.scene().attributes.add(a.node(0), a.text(1), a.value(2)), Value();
       }},
      {"lock_attribute",
       [](Session& s, const Arguments& a) {
         return s.scene().attributes.lock(a.node(0), a.text(1), a.flag(2)), Value();
       }},
      {"is_channel",
       [](Session& s, const Arguments& a) {
         return Value(channel_named(s.scene(), a.node(0), a.text(1)) != Channel::count);
       }},
      {"channel_parts",
       [](Session& s, const Arguments& a) { return list_of(channel_parts(s.scene(), a.node(0), a.text(1))); }},
      {"connect", connect},
      {"disconnect",
       [](Session& s, const Arguments& a) { return s.scene().connections.disconnect(a.node(0), a.text(1)), Value(); }},
      {"has_vectors",
       [](Session& s, const Arguments& a) {
         return Value(s.scene().nodes.type(a.node(0)) == viz_node::kType && viz_node::is_vector_array(a.text(1)));
       }},
  };
  return calls;
}

}  // namespace vantorelix::standalone
