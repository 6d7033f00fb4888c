#include "maya/standalone/calls.h"

#include <algorithm>
#include <iterator>

#include "host/error.h"
#include "standalone/scene/attributes/attribute_names.h"

namespace vantorelix::standalone {

using host::Error;
using host::ErrorKind;
using host::Value;

const Value& Arguments::value(std::size_t i) const {
  static const Value none;
  return i < values_.size() ? values_[i] : none;
}

const std::string& Arguments::text(std::size_t i) const {
  const std::string* text = value(i).as_text();
  if (!text) throw Error("Expected a string, got " + value(i).repr(), ErrorKind::type);
  return *text;
}

double Arguments::number(std::size_t i) const {
  const Value& given = value(i);
  if (!given.as_float() && !given.as_int() && !given.as_bool())
    throw Error("Expected a number, got " + given.repr(), ErrorKind::type);
  return given.to_float();
}

const std::vector<Value>& Arguments::list(std::size_t i) const {
  const host::List* list = value(i).as_list();
  if (!list) throw Error("Expected a list, got " + value(i).repr(), ErrorKind::type);
  return **list;
}

Value call(Session& session, const std::string& name, const Value& arguments) {
  const host::List* list = arguments.as_list();
  if (!list) throw Error("The arguments of '" + name + "' are no list", ErrorKind::type);
  for (const Calls* calls : {&node_calls(), &attribute_calls(), &animation_calls(), &host_calls(), &undo_calls()}) {
    const auto found = calls->find(name);
    if (found != calls->end()) return found->second(session, Arguments(**list));
  }
  throw Error("The host has no call '" + name + "'", ErrorKind::attribute);
}

namespace {

template <class T>
Value values_of(const std::vector<T>& items) {
  std::vector<Value> values;
  values.reserve(items.size());
  std::transform(items.begin(), items.end(), std::back_inserter(values), [](const T& item) { return Value(item); });
  return Value::list(std::move(values));
}

}  // namespace

Value list_of(const std::vector<NodeId>& nodes) {
  return values_of(std::vector<std::int64_t>(nodes.begin(), nodes.end()));
}
Value list_of(const std::vector<double>& numbers) { return values_of(numbers); }
Value list_of(const std::vector<std::string>& texts) { return values_of(texts); }

Value node_or_none(NodeId node) { return node == kNoNode ? Value() : Value(static_cast<std::int64_t>(node)); }

namespace {

const AttributeNames& names() {
  static const AttributeNames known;
  return known;
}

// AttributeNames::kNone for what is no transform's.
AttributeId attribute_named(const Scene& scene, NodeId node, const std::string& attribute) {
  if (!scene.is_transform(node)) return AttributeNames::kNone;
  return names().find(scene.type(node) == "joint" ? NameSet::joint : NameSet::transform, attribute);
}

}  // namespace

Channel channel_named(const Scene& scene, NodeId node, const std::string& attribute) {
  const AttributeId id = attribute_named(scene, node, attribute);
  return id != AttributeNames::kNone && is_channel(id) ? static_cast<Channel>(id) : Channel::count;
}

std::vector<std::string> channel_parts(const Scene& scene, NodeId node, const std::string& attribute) {
  const AttributeId id = attribute_named(scene, node, attribute);
  if (id == AttributeNames::kNone || !is_compound(id)) return {};
  std::vector<std::string> parts;
  for (AttributeId k = 0; k < part_count(id); ++k) parts.push_back(names().text(part(id, k)));
  return parts;
}

}  // namespace vantorelix::standalone
