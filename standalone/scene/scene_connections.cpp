// Connections, and what they say about who drives whom.
#include <algorithm>
#include <array>
#include <unordered_set>

#include "standalone/scene/graph/change.h"
#include "standalone/scene/graph/scene_data.h"

namespace vantorelix::standalone {
namespace {

bool is_converter(const Node& node) {
  return node.type->names == NameSet::unit_conversion || node.type->names == NameSet::pair_blend;
}

// Whether an input of a converter matters to one of its outputs: of a pair blend, only the same component's.
bool concerns(const Node& converter, AttributeId input, AttributeId output) {
  if (converter.type->names != NameSet::pair_blend || part_count(output) > 0) return true;
  if (!is_blend_part(output)) return false;
  const AttributeId whole = compound_of(output), k = output - part(whole, 0);
  const bool rotates = whole == attribute::outRotate;
  for (const AttributeId in : {rotates ? attribute::inRotate1 : attribute::inTranslate1,
                               rotates ? attribute::inRotate2 : attribute::inTranslate2})
    if (input == in || input == part(in, k)) return true;
  return false;
}

// Looks for the curves behind inputs, each curve and each output of a converter once.
class CurveSearch {
 public:
  explicit CurveSearch(const Scene::Data& scene) : scene_(scene) {}

  // Calls found(curve), nearest first, until it says true.
  template <class Found>
  bool behind(const Input& first, Found found) {
    open_.assign(1, first);
    while (!open_.empty()) {
      const Input input = open_.back();
      open_.pop_back();
      const Node* source = input.source == kNoNode ? nullptr : scene_.find(input.source);
      if (source == nullptr || !(source->curve || is_converter(*source))) continue;
      if (!note(std::uint64_t{input.source} << 32 | input.source_attribute)) continue;
      if (source->curve && found(*source)) return true;
      const auto& inputs = source->inputs.all();
      for (auto i = inputs.rbegin(); is_converter(*source) && i != inputs.rend(); ++i)
        if (i->source != kNoNode && concerns(*source, i->attribute, input.source_attribute)) open_.push_back(*i);
    }
    return false;
  }

 private:
  // False when the output was met before. Most nodes have few drivers, which need no hashing.
  bool note(std::uint64_t output) {
    if (few_count_ < few_.size()) {
      const auto end = few_.begin() + static_cast<std::ptrdiff_t>(few_count_);
      if (std::find(few_.begin(), end, output) != end) return false;
      few_[few_count_++] = output;
      return true;
    }
    if (many_.empty()) many_.insert(few_.begin(), few_.end());
    return many_.insert(output).second;
  }

  const Scene::Data& scene_;
  std::vector<Input> open_;
  std::array<std::uint64_t, 16> few_;  // the first outputs met
  std::size_t few_count_ = 0;
  std::unordered_set<std::uint64_t> many_;
};

// The curves behind the node's inputs, each once, in the order of the inputs.
std::vector<const Node*> curves_behind(const Scene::Data& scene, const Node& node) {
  std::vector<const Node*> curves;
  const std::vector<Input>& inputs = node.inputs.all();
  curves.reserve(inputs.size());
  CurveSearch search(scene);
  for (const Input& input : inputs)
    search.behind(input, [&](const Node& curve) {
      curves.push_back(&curve);
      return false;
    });
  return curves;
}

std::vector<const Track*> tracks_of(const Scene::Data& scene, NodeId id) {
  std::vector<const Track*> tracks;
  for (const Input& input : scene.at(id).inputs.all()) {
    const Node* source = input.source == kNoNode ? nullptr : scene.find(input.source);
    if (source && source->track) tracks.push_back(source->track.get());
  }
  return tracks;
}

}  // namespace

void Scene::connect(NodeId source, std::string_view source_attribute, NodeId destination,
                    std::string_view destination_attribute) {
  Data& d = *data_;
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

void Scene::disconnect(NodeId destination, std::string_view attribute) {
  Data& d = *data_;
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

NodeId Scene::driving_curve(NodeId id, Channel c) const {
  const Data& d = *data_;
  const Node& node = d.at(id);
  const AttributeId attribute = id_of(c);
  const Input* input = d.driver(node, attribute);
  if (input == nullptr) return kNoNode;
  Input component = *input;
  if (input->attribute != attribute && part_count(component.source_attribute) > 0)
    component.source_attribute = part(component.source_attribute, attribute - part(input->attribute, 0));
  CurveSearch search(d);
  NodeId curve = kNoNode;
  search.behind(component, [&](const Node& found) {
    curve = found.id;
    return true;
  });
  return curve;
}

bool Scene::has_keys(NodeId id) const {
  const Data& d = *data_;
  CurveSearch search(d);
  for (const Input& input : d.at(id).inputs.all())
    if (search.behind(input, [](const Node&) { return true; })) return true;
  return !tracks_of(d, id).empty();
}

std::vector<NodeId> Scene::driving_curves(NodeId id) const {
  std::vector<NodeId> curves;
  for (const Node* curve : curves_behind(*data_, data_->at(id))) curves.push_back(curve->id);
  return curves;
}

std::vector<double> Scene::key_times(NodeId id) const {
  std::vector<double> times;
  const std::vector<const Node*> curves = curves_behind(*data_, data_->at(id));
  std::size_t count = 0;
  for (const Node* driving : curves) count += driving->curve->keys().size();
  times.reserve(count);
  for (const Node* driving : curves) driving->curve->append_key_times(times);
  for (const Track* track : tracks_of(*data_, id))
    times.insert(times.end(), track->key_times().begin(), track->key_times().end());
  data_->evaluation.keys_read = id;
  return times;
}

std::size_t Scene::key_count(NodeId id) const {
  std::size_t count = 0;
  for (const Node* driving : curves_behind(*data_, data_->at(id))) count += driving->curve->keys().size();
  for (const Track* track : tracks_of(*data_, id)) count += track->key_times().size();
  return count;
}

}  // namespace vantorelix::standalone
