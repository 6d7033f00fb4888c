#include "maya/standalone/calls.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "host/error.h"
#include "standalone/scene/attributes/channel_names.h"

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
  if (!list) throw Error("The arguments of '" + name + "' must be a list.", ErrorKind::type);
  for (const Calls* calls : {&node_calls(), &attribute_calls(), &animation_calls(), &host_calls(), &undo_calls()}) {
    const auto found = calls->find(name);
    if (found != calls->end()) return found->second(session, Arguments(**list));
  }
  throw Error("The standalone host has no call '" + name + "'; use a library and a package 'maya' of one version.",
              ErrorKind::attribute);
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

std::optional<NamedChannels> channels_of(const Scene& scene, NodeId node, const std::string& attribute) {
  if (!scene.nodes.is_transform(node)) return std::nullopt;
  return channels_named(attribute, scene.nodes.type(node) == "joint");
}

}  // namespace

Channel channel_named(const Scene& scene, NodeId node, const std::string& attribute) {
  const auto channels = channels_of(scene, node, attribute);
  return channels && channels->count == 1 ? channels->first : Channel::count;
}

std::vector<std::string> channel_parts(const Scene& scene, NodeId node, const std::string& attribute) {
  const auto channels = channels_of(scene, node, attribute);
  if (!channels || channels->count == 1) return {};
  std::vector<std::string> parts;
  for (std::size_t k = 0; k < channels->count; ++k) parts.push_back(name_of(component(channels->first, k)));
  return parts;
}

}  // namespace vantorelix::standalone
