#include "standalone/scene/graph/scene_data.h"

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

Node& Scene::Data::at(NodeId id) const {
  Node* node = id == kWorld ? nullptr : find(id);
  if (node == nullptr) throw missing_error("node " + std::to_string(id));
  return *node;
}

Node& Scene::Data::transform(NodeId id) const {
  Node& node = at(id);
  if (!node.channels) throw missing_error(unique_name(node) + ".worldMatrix");
  return node;
}

Node& Scene::Data::curve(NodeId id) const {
  Node& node = at(id);
  if (!node.curve) throw host::Error("'" + unique_name(node) + "' is not an animation curve.");
  return node;
}

std::string Scene::Data::plug_name(const Node& n, AttributeId attribute) const {
  return plug_name(n, attributes.text(attribute));
}

std::string Scene::Data::plug_name(const Node& n, std::string_view attribute) const {
  return unique_name(n) + "." + std::string(attribute);
}

Extras& Scene::Data::extras(Node& n) const {
  if (!n.extras) n.extras = std::make_unique<Extras>();
  return *n.extras;
}

Affine Scene::Data::offset_parent_matrix(const Node& n) const {
  return n.extras && n.extras->offset_parent_matrix ? *n.extras->offset_parent_matrix : Affine{};
}

void Scene::Data::compact_children(Node& n) const {
  if (n.child_gaps == 0) return;
  std::erase(n.children, kNoNode);
  n.child_gaps = 0;
  for (std::size_t i = 0; i < n.children.size(); ++i)
    nodes[n.children[i]]->place_in_parent = static_cast<std::uint32_t>(i);
}

const Input* Scene::Data::driver(const Node& n, AttributeId attribute) const {
  if (const Input* own = n.inputs.find(attribute)) return own;
  const AttributeId whole = compound_of(attribute);
  return whole == attribute ? nullptr : n.inputs.find(whole);
}

const host::Value* Scene::Data::stored(const Node& n, AttributeId attribute) const {
  const auto in = [attribute](const Values& values) {
    const auto at = place_of(values, attribute);
    return at != values.end() && at->first == attribute ? &at->second : nullptr;
  };
  const host::Value* const own = n.extras ? in(n.extras->values) : nullptr;
  return own ? own : in(n.type->values);
}

void Scene::Data::store(Node& n, AttributeId attribute, host::Value value) const {
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

bool Scene::Data::connection_stands(const Node& source, const Output& output) const {
  const Node* destination = find(output.destination);
  const Input* input = destination ? destination->inputs.find(output.attribute) : nullptr;
  return input && input->source == source.id;
}

std::vector<Output> Scene::Data::outputs_of(const Node& n) const {
  std::vector<Output> standing;
  for (const Output& out : n.outputs)
    if (connection_stands(n, out)) standing.push_back(out);
  return standing;
}

void Scene::Data::remove_output(Node& source) {
  --source.live_outputs;
  if (source.outputs.size() < 2 * source.live_outputs + 8) return;
  std::erase_if(source.outputs, [&](const Output& out) { return !connection_stands(source, out); });
}

void Scene::Data::tell_curve_edited(NodeId id, bool keys) {
  curves_changed();
  if (listener.curve_edited) listener.curve_edited(id);
  if (keys && listener.keyframe_edited) listener.keyframe_edited(id);
}

Scene::Scene() : data_(std::make_unique<Data>()) {}
Scene::~Scene() = default;
Scene::Scene(Scene&&) noexcept = default;
Scene& Scene::operator=(Scene&&) noexcept = default;

Settings& Scene::Data::change_settings() {
  recorder.note<AllSettings>(*this);
  return settings;
}

double Scene::frames_per_second() const { return data_->settings.frames_per_second; }

void Scene::set_frames_per_second(double fps) {
  if (!(fps > 0.0) || fps > 1e9) throw host::Error("frames per second must be above 0", host::ErrorKind::value);
  data_->change_settings().frames_per_second = fps;
  for (const auto& node : data_->nodes)
    if (node && node->curve) node->curve->set_frames_per_second(fps);
  data_->curves_changed();
}

std::string Scene::linear_unit() const { return data_->settings.linear_unit; }
char Scene::up_axis() const { return data_->settings.up_axis; }
const std::vector<Take>& Scene::takes() const { return data_->settings.takes; }
std::size_t Scene::take() const { return data_->settings.take; }
double Scene::playback_min() const { return data_->settings.playback_min; }
double Scene::playback_max() const { return data_->settings.playback_max; }
double Scene::current_time() const { return data_->settings.current_time; }

void Scene::set_linear_unit(std::string unit) { data_->change_settings().linear_unit = std::move(unit); }
void Scene::set_up_axis(char axis) { data_->change_settings().up_axis = axis; }
void Scene::set_current_time(double frame) { data_->change_settings().current_time = frame; }

void Scene::set_takes(std::vector<Take> takes, std::size_t chosen) {
  Settings& settings = data_->change_settings();
  settings.takes = std::move(takes);
  settings.take = chosen;
}

void Scene::set_playback_range(double first, double last) {
  Settings& settings = data_->change_settings();
  settings.playback_min = first;
  settings.playback_max = last;
}

std::uint64_t Scene::revision() const { return data_->revision; }
void Scene::set_listener(SceneListener listener) { data_->listener = std::move(listener); }

void Scene::warn(std::string kind) {
  const auto [place, fresh] = data_->warning_places.try_emplace(kind, data_->warnings.size());
  if (fresh) data_->warnings.push_back({std::move(kind), 0});
  ++data_->warnings[place->second].count;
}

std::vector<Warning> Scene::warnings() const { return data_->warnings; }

}  // namespace vantorelix::standalone
