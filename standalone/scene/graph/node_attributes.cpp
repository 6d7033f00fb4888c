#include "standalone/scene/graph/node_attributes.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

#include "standalone/scene/graph/change.h"
#include "standalone/scene/graph/graph.h"

namespace vantorelix::standalone {
namespace {

constexpr double kDegrees = 180.0 / std::numbers::pi;

bool is_switch(Channel c) { return c >= Channel::rotateOrder; }

const Vectors* vectors_at(const Node& node, AttributeId attribute) {
  if (!node.extras) return nullptr;
  for (const auto& [id, values] : node.extras->vectors)
    if (id == attribute) return &values;
  return nullptr;
}

struct Found {
  AttributeId attribute = AttributeNames::kNone;  // or there is none
  const host::Value* stored = nullptr;            // null where none is
};

Found known(const Graph& scene, const Node& node, std::string_view name) {
  const AttributeId attribute = scene.attributes.find(node.type->names, name);
  if (attribute == AttributeNames::kNone || is_channel(attribute)) return {attribute};
  const host::Value* const stored = scene.stored(node, attribute);
  const bool there = attribute < attribute::known_count || stored || vectors_at(node, attribute);
  return {there ? attribute : AttributeNames::kNone, stored};
}

AttributeId required(const Graph& scene, const Node& node, std::string_view name) {
  const AttributeId attribute = known(scene, node, name).attribute;
  if (attribute == AttributeNames::kNone) throw missing_error(scene.plug_name(node, name));
  return attribute;
}

bool is_locked(const Node& node, AttributeId attribute) {
  if (!node.extras) return false;
  const auto& locked = node.extras->locked;
  return std::binary_search(locked.begin(), locked.end(), attribute);
}

// The attribute itself, its compound, or any of its parts.
template <class Test>
bool any_of(AttributeId attribute, Test test) {
  if (test(attribute) || test(compound_of(attribute))) return true;
  for (AttributeId k = 0; k < part_count(attribute); ++k)
    if (test(part(attribute, k))) return true;
  return false;
}

void require_free(const Graph& scene, const Node& node, AttributeId attribute) {
  if (node.inputs.empty() && (!node.extras || node.extras->locked.empty())) return;
  const bool taken =
      any_of(attribute, [&](AttributeId id) { return is_locked(node, id) || node.inputs.find(id) != nullptr; });
  if (taken) throw locked_error(scene.plug_name(node, attribute));
}

double finite_number(const Graph& scene, const Node& node, AttributeId attribute, const host::Value& value) {
  double number = 0.0;
  if (const bool* b = value.as_bool()) {
    number = *b ? 1.0 : 0.0;
  } else if (value.as_text() || value.as_bytes() || value.as_list() || value.is_none()) {
    throw host::Error(
        "The value " + value.repr() + " does not fit the attribute '" + scene.plug_name(node, attribute) + "'.",
        host::ErrorKind::type);
  } else {
    number = value.to_float();
  }
  if (!std::isfinite(number))
    throw host::Error("The attribute '" + scene.plug_name(node, attribute) + "' takes finite numbers only.",
                      host::ErrorKind::value);
  return number;
}

double to_inside(Channel c, double shown) { return is_angle(c) ? shown / kDegrees : shown; }

host::Value shown(Channel c, double inside) {
  if (c == Channel::rotateOrder) return host::Value(rotate_order(inside));
  if (is_switch(c)) return host::Value(inside != 0.0);
  return host::Value(is_angle(c) ? inside * kDegrees : inside);
}

host::Value as_list(const Affine& m) {
  std::vector<host::Value> items;
  for (std::size_t i = 0; i < 4; ++i) {
    for (std::size_t j = 0; j < 3; ++j) items.emplace_back(m.m[i][j]);
    items.emplace_back(i == 3 ? 1.0 : 0.0);
  }
  return host::Value::list(std::move(items));
}

// Whether anything that moves may hang on a value that is not a channel.
bool may_move(const Node& node) {
  return node.live_outputs > 0 || node.type->names == NameSet::pair_blend ||
         node.type->names == NameSet::unit_conversion;
}

void set_plain(Graph& scene, Node& node, AttributeId attribute, host::Value value) {
  scene.recorder.note<StoredValue>(node, attribute);
  scene.store(node, attribute, std::move(value));
  if (may_move(node)) scene.structure_changed();  // a pair blend's modes decide what is followed
}

// A flag stays a flag, a whole number a whole number, whatever the script passed.
host::Value like(const Graph& scene, const Node& node, AttributeId attribute, const host::Value& before,
                 const host::Value& value) {
  if (before.as_bool()) return host::Value(finite_number(scene, node, attribute, value) != 0.0);
  if (before.as_int()) return host::Value(host::Value(finite_number(scene, node, attribute, value)).to_int());
  if (before.as_float()) return host::Value(finite_number(scene, node, attribute, value));
  return value;
}

}  // namespace

double SceneAttributes::channel(NodeId node, Channel c) const { return (*graph().transform(node).channels)[index(c)]; }

void SceneAttributes::set_channel(NodeId id, Channel c, double value) {
  Node& node = graph().transform(id);
  if (!std::isfinite(value))
    throw host::Error("The attribute '" + graph().plug_name(node, id_of(c)) + "' takes finite numbers only.",
                      host::ErrorKind::value);
  double& place = (*node.channels)[index(c)];
  if (place == value) return;
  graph().recorder.note<ChannelValue>(node, c);
  place = value;
  graph().values_changed();
}

void SceneAttributes::set_channels(NodeId id, Channel first, const std::array<double, 3>& values) {
  for (std::size_t k = 0; k < values.size(); ++k) set_channel(id, component(first, k), values[k]);
}

void SceneAttributes::set_offset_parent_matrix(NodeId id, const std::array<double, 16>& matrix) {
  Node& node = graph().transform(id);
  Affine affine;
  for (std::size_t i = 0; i < 4; ++i)
    for (std::size_t j = 0; j < 3; ++j) affine.m[i][j] = matrix[4 * i + j];
  for (const double d : matrix)
    if (!std::isfinite(d))
      throw host::Error("The offset parent matrix takes finite numbers only.", host::ErrorKind::value);
  graph().recorder.note<OffsetMatrix>(node);
  graph().extras(node).offset_parent_matrix = std::make_unique<Affine>(affine);
  graph().values_changed();
}

void SceneAttributes::set(NodeId id, std::string_view name, const host::Value& value) {
  if (!set_if_there(id, name, value)) throw missing_error(graph().plug_name(graph().at(id), name));
}

bool SceneAttributes::set_if_there(NodeId id, std::string_view name, const host::Value& value) {
  Graph& d = graph();
  Node& node = d.at(id);
  const auto [attribute, before] = known(d, node, name);
  if (attribute == AttributeNames::kNone) return false;
  require_free(d, node, attribute);
  if (is_channel(attribute)) {
    const auto c = static_cast<Channel>(attribute);
    set_channel(id, c, to_inside(c, finite_number(d, node, attribute, value)));
    return true;
  }
  if (part_count(attribute) == 0 && attribute != attribute::offsetParentMatrix) {
    if (attribute == attribute::matrix || attribute == attribute::worldMatrix)
      throw locked_error(d.plug_name(node, name));
    set_plain(d, node, attribute, before ? like(d, node, attribute, *before, value) : value);
    return true;
  }
  const std::size_t count = attribute == attribute::offsetParentMatrix ? 16 : 3;
  const host::List* list = value.as_list();
  if (!list || (*list)->size() != count)
    throw host::Error("The attribute '" + d.plug_name(node, name) + "' takes " + std::to_string(count) + " numbers.",
                      host::ErrorKind::type);
  std::array<double, 16> numbers{};
  for (std::size_t k = 0; k < count; ++k) numbers[k] = finite_number(d, node, attribute, (**list)[k]);
  if (count == 16) {
    set_offset_parent_matrix(id, numbers);
    return true;
  }
  for (AttributeId k = 0; k < 3; ++k) {
    const AttributeId each = part(attribute, k);
    if (is_channel(each)) {
      set_channel(id, static_cast<Channel>(each), to_inside(static_cast<Channel>(each), numbers[k]));
    } else {
      set_plain(d, node, each, host::Value(numbers[k]));
    }
  }
  return true;
}

host::Value SceneAttributes::value(NodeId id, std::string_view name) const {
  const Graph& d = graph();
  const Node& node = d.at(id);
  const AttributeId attribute = required(d, node, name);
  const auto one = [&](AttributeId each) {
    if (is_channel(each)) return shown(static_cast<Channel>(each), (*node.channels)[each]);
    if (const host::Value* value = d.stored(node, each)) return *value;
    if (each == attribute::visibility) return host::Value(true);
    if (each == attribute::conversionFactor || each == attribute::weight) return host::Value(1.0);
    return host::Value(0.0);
  };
  if (attribute == attribute::matrix) return as_list(local_matrix_(id, d.settings.current_time));
  if (attribute == attribute::worldMatrix) return as_list(world_matrix_(id, d.settings.current_time));
  if (attribute == attribute::offsetParentMatrix) return as_list(d.offset_parent_matrix(node));
  if (part_count(attribute) == 0) return vectors_at(node, attribute) ? host::Value() : one(attribute);
  return host::Value::list({one(part(attribute, 0)), one(part(attribute, 1)), one(part(attribute, 2))});
}

bool SceneAttributes::has(NodeId id, std::string_view name) const {
  return known(graph(), graph().at(id), name).attribute != AttributeNames::kNone;
}

void SceneAttributes::add(NodeId id, std::string_view name, const host::Value& value) {
  Graph& d = graph();
  Node& node = d.at(id);
  const AttributeId attribute = d.attributes.intern(node.type->names, name);
  if (is_channel(attribute) || part_count(attribute) > 0) return set(id, name, value);
  set_plain(d, node, attribute, value);
}

void SceneAttributes::lock(NodeId id, std::string_view name, bool locked) {
  Graph& d = graph();
  Node& node = d.at(id);
  const AttributeId attribute = required(d, node, name);
  d.recorder.note<AttributeLock>(node, attribute);
  auto& all = d.extras(node).locked;
  const auto at = std::lower_bound(all.begin(), all.end(), attribute);
  const bool there = at != all.end() && *at == attribute;
  if (locked && !there) all.insert(at, attribute);
  if (!locked && there) all.erase(at);
}

bool SceneAttributes::is_locked(NodeId id, Channel c) const {
  const Node& node = graph().transform(id);
  return standalone::is_locked(node, id_of(c)) || standalone::is_locked(node, compound_of(id_of(c)));
}

void SceneAttributes::set_vectors(NodeId id, std::string_view name, Vectors values) {
  Graph& d = graph();
  Node& node = d.at(id);
  const AttributeId attribute = d.attributes.intern(node.type->names, name);
  d.recorder.note<VectorArray>(node, attribute);
  auto& all = d.extras(node).vectors;
  const auto at = std::find_if(all.begin(), all.end(), [attribute](const auto& v) { return v.first == attribute; });
  if (at != all.end()) {
    at->second = std::move(values);
  } else {
    if (all.empty()) all.reserve(8);  // a node has several or none
    all.emplace_back(attribute, std::move(values));
  }
}

Vectors SceneAttributes::vectors(NodeId id, std::string_view name) const {
  const Node& node = graph().at(id);
  const Vectors* found = vectors_at(node, graph().attributes.find(node.type->names, name));
  return found ? *found : nullptr;
}

void SceneAttributes::set_curve_points(NodeId shape, int degree, std::vector<Vector> points) {
  Node& node = graph().at(shape);
  graph().recorder.note<Geometry>(node);
  Extras& extras = graph().extras(node);
  extras.curve_degree = degree;
  extras.curve_points = std::move(points);
}

int SceneAttributes::curve_degree(NodeId shape) const {
  const Node& node = graph().at(shape);
  return node.extras ? node.extras->curve_degree : 0;
}

const std::vector<Vector>& SceneAttributes::curve_points(NodeId shape) const {
  static const std::vector<Vector> kNothing;
  const Node& node = graph().at(shape);
  return node.extras ? node.extras->curve_points : kNothing;
}

}  // namespace vantorelix::standalone
