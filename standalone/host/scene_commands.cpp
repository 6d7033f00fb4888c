// Commands on nodes, names, the selection and attributes.
#include <algorithm>
#include <array>
#include <utility>

#include "host/error.h"
#include "standalone/host/commands.h"
#include "standalone/host/viz_node.h"

namespace vantorelix::standalone {

using host::Error;
using host::ErrorKind;
using host::Value;

namespace {

struct Attribute {
  NodeId node;
  std::string_view name;  // in the path that it was taken from
};

// Splits "|arm|wrist.worldMatrix[0]" and finds the node.
Attribute attribute_named(const Scene& scene, const std::string& path) {
  const std::size_t dot = path.find('.');
  if (dot == std::string::npos || dot + 1 == path.size()) throw Error("No attribute was specified.");
  const std::string_view full = path;
  return {node_named(scene, full.substr(0, dot), path), full.substr(dot + 1)};
}

Error no_match(const std::string& name) { return Error("No object matches name: " + name, ErrorKind::value); }

bool is_number(const Value& value) { return value.as_bool() || value.as_int() || value.as_float(); }

// The number that setAttr puts into a numeric attribute; throws its error for anything else, a numeric text too.
double number(const Value& value) {
  if (is_number(value)) return value.to_float();
  if (value.is_none()) throw Error("setAttr: No values given.");
  throw Error("setAttr: Error reading data element number 1: " + value.text());
}

// `value` as an attribute of the kind of `like` holds it.
Value converted(const Value& value, const Value& like) {
  const double given = number(value);
  if (like.as_bool()) return given != 0.0;
  if (like.as_int()) return Value(given).to_int();
  return given;
}

// Attributes that every DAG node of the host has and that move nothing.
const std::array<std::pair<std::string_view, Value>, 3>& display_attributes() {
  static const std::array<std::pair<std::string_view, Value>, 3> attributes = {
      {{"visibility", true}, {"overrideEnabled", false}, {"overrideDisplayType", 0}}};
  return attributes;
}

std::vector<NodeId> nodes_named(const Scene& scene, const std::vector<std::string>& names) {
  std::vector<NodeId> nodes;
  for (const std::string& name : names) nodes.push_back(node_named(scene, name));
  return nodes;
}

bool is_of_type(const std::string& type, const std::string& wanted) {
  if (type == wanted) return true;
  if (wanted == "transform") return type == "joint";
  return wanted == "animCurve" && type.compare(0, wanted.size(), wanted) == 0;
}

}  // namespace

// --- selection and node queries -------------------------------------------------------------------------------

std::vector<std::string> Commands::ls_selection() {
  std::vector<std::string> names;
  for (const NodeId node : state_.selected()) names.push_back(scene_.names.long_name(node));
  return names;
}

std::vector<std::string> Commands::ls_type(const std::string& type) {
  std::vector<std::string> names;
  for (const NodeId node : scene_.nodes.all())
    if (is_of_type(scene_.nodes.type(node), type)) names.push_back(scene_.names.unique_name(node));
  return names;
}

bool Commands::objExists(const std::string& name) {
  const std::size_t dot = name.find('.');
  try {
    const std::string_view full = name;
    const NodeId node = scene_.names.find(full.substr(0, dot));
    return node != kNoNode && (dot == std::string::npos || scene_.attributes.has(node, full.substr(dot + 1)));
  } catch (const Error&) {
    return true;  // more than one
  }
}

std::vector<std::string> Commands::listRelatives_parent(const std::string& node) {
  const NodeId parent = scene_.nodes.parent(node_named(scene_, node));
  if (parent == kWorld) return {};
  return {scene_.names.long_name(parent)};
}

std::vector<std::string> Commands::listRelatives_shapes(const std::string& node) {
  std::vector<std::string> names;
  for (const NodeId child : scene_.nodes.children(node_named(scene_, node)))
    if (scene_.nodes.is_shape(child)) names.push_back(scene_.names.long_name(child));
  return names;
}

void Commands::select_replace(const std::vector<std::string>& names) { select(names); }

void Commands::select(const std::vector<std::string>& names) { state_.selection = nodes_named(scene_, names); }

void Commands::select_clear() { state_.selection.clear(); }

// --- making, naming, moving, deleting -------------------------------------------------------------------------

std::string Commands::createNode(const std::string& type, const std::string& name) {
  if (!scene_.nodes.is_registered_type(type)) throw Error("Unknown object type: " + type);
  const NodeId node = scene_.nodes.create(type, scene_.namespaces.name_for_new(name));
  state_.selection = {node};
  return scene_.names.unique_name(node);
}

std::string Commands::rename(const std::string& node, const std::string& name) {
  const NewName wanted = scene_.namespaces.name_for_renamed(name);
  if (wanted.dropped) state_.warn("Removing invalid characters from name");
  return scene_.nodes.rename(node_named(scene_, node), wanted.text);
}

void Commands::parent(const std::string& node, const std::string& parent) {
  const NodeId child = node_named(scene_, node);
  scene_.nodes.set_parent(child, node_named(scene_, parent));
}

void Commands::group_empty(const std::string& name) {
  state_.selection = {scene_.nodes.create("transform", scene_.namespaces.name_for_new(name.empty() ? "group1" : name))};
}

void Commands::delete_(const std::string& node) { scene_.nodes.remove(node_named(scene_, node)); }

std::string Commands::next_curve_shape_name() {
  std::string name;
  do name = scene_.namespaces.name_for_new("curveShape" + std::to_string(++curve_shapes_named_));
  while (objExists(name));
  return name;
}

std::string Commands::curve(const Value& degree, const std::vector<Vector>& points, const std::string& name) {
  if (!degree.as_bool() && !degree.as_int() && !degree.as_float())
    throw Error("Invalid arguments for flag 'd'. Expected int, got " + degree.repr(), ErrorKind::type);
  const std::int64_t d = degree.to_int();
  if (d < 1) throw Error("curve: The degree must be at least 1.");
  if (static_cast<std::int64_t>(points.size()) <= d)
    throw Error("curve: A curve of degree " + std::to_string(d) + " needs at least degree+1 points.");
  const NodeId transform =
      scene_.nodes.create("transform", scene_.namespaces.name_for_new(name.empty() ? "curve1" : name));
  const NodeId shape = scene_.nodes.create("nurbsCurve", next_curve_shape_name(), transform);
  scene_.attributes.set_curve_points(shape, static_cast<int>(d), points);
  state_.selection = {transform};
  return scene_.names.unique_name(transform);
}

// --- attributes and animation ---------------------------------------------------------------------------------

std::array<double, 16> Commands::getAttr_matrix(const std::string& attribute, double time) {
  const auto [node, name] = attribute_named(scene_, attribute);
  const bool world = name == "worldMatrix[0]" || name == "wm[0]";
  if (!(world || name == "matrix" || name == "m") || !(scene_.nodes.is_transform(node) || scene_.nodes.is_shape(node)))
    throw no_match(attribute);
  const Affine matrix = world ? scene_.evaluation.world_matrix(node, time) : scene_.evaluation.local_matrix(node, time);
  std::array<double, 16> flat{};
  for (std::size_t row = 0; row < 4; ++row)
    for (std::size_t column = 0; column < 3; ++column) flat[row * 4 + column] = matrix.m[row][column];
  flat[15] = 1.0;
  return flat;
}

void Commands::setAttr(const std::string& attribute, const Value& value) {
  const auto [node, name] = attribute_named(scene_, attribute);
  for (const auto& [display, like] : display_attributes()) {
    if (display != name) continue;
    if (!scene_.attributes.has(node, name)) scene_.attributes.add(node, name, like);
    return scene_.attributes.set(node, name, converted(value, like));
  }
  // A number becomes of the kind that the attribute has.
  if (!is_number(value) && scene_.nodes.type(node) == viz_node::kType && viz_node::default_of(name)) number(value);
  if (!scene_.attributes.set_if_there(node, name, value)) throw no_match(attribute);
}

std::vector<double> Commands::keyframe_times(const std::string& node) {
  return scene_.curves.key_times(node_named(scene_, node));
}

double Commands::playbackOptions_min() { return scene_.settings.playback_min(); }

double Commands::playbackOptions_max() { return scene_.settings.playback_max(); }

double Commands::currentTime() { return scene_.settings.current_time(); }

}  // namespace vantorelix::standalone
