// Which curves and tracks drive a node.
#include <algorithm>
#include <unordered_set>

#include "standalone/scene/graph/curve_nodes.h"
#include "standalone/scene/graph/graph.h"

namespace vantorelix::standalone {
namespace {

bool is_converter(const Node& node) {
  return node.type->names == NameSet::unit_conversion || node.type->names == NameSet::pair_blend;
}

// Whether an input of a converter matters to one of its outputs: of a pair blend, only the same component's.
bool concerns(const Node& converter, AttributeId input, AttributeId output) {
  if (converter.type->names != NameSet::pair_blend || part_count(output) > 0) return true;
  if (!is_blend_part(output)) return false;
  const AttributeId compound = compound_of(output), k = output - part(compound, 0);
  const bool rotates = compound == attribute::outRotate;
  for (const AttributeId in : {rotates ? attribute::inRotate1 : attribute::inTranslate1,
                               rotates ? attribute::inRotate2 : attribute::inTranslate2})
    if (input == in || input == part(in, k)) return true;
  return false;
}

// Looks for the curves behind inputs, each curve and each output of a converter once.
class CurveSearch {
 public:
  explicit CurveSearch(const Graph& scene) : scene_(scene) {}

  // Calls found(curve), nearest first, until it says true.
  template <class Found>
  bool behind(const Input& first, Found found) {
    open_.assign(1, first);
    while (!open_.empty()) {
      const Input input = open_.back();
      open_.pop_back();
      const Node* source = input.source == kNoNode ? nullptr : scene_.find(input.source);
      if (source == nullptr || !(source->curve || is_converter(*source))) continue;
      if (!met_.insert(std::uint64_t{input.source} << 32 | input.source_attribute).second) continue;
      if (source->curve && found(*source)) return true;
      const auto& inputs = source->inputs.all();
      for (auto i = inputs.rbegin(); is_converter(*source) && i != inputs.rend(); ++i)
        if (i->source != kNoNode && concerns(*source, i->attribute, input.source_attribute)) open_.push_back(*i);
    }
    return false;
  }

 private:
  const Graph& scene_;
  std::vector<Input> open_;
  std::unordered_set<std::uint64_t> met_;  // outputs
};

// The curves behind the node's inputs, each once, in the order of the inputs.
std::vector<const Node*> curves_behind(const Graph& scene, const Node& node) {
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

std::vector<const Track*> tracks_of(const Graph& scene, NodeId id) {
  std::vector<const Track*> tracks;
  for (const Input& input : scene.at(id).inputs.all()) {
    const Node* source = input.source == kNoNode ? nullptr : scene.find(input.source);
    if (source && source->track) tracks.push_back(source->track.get());
  }
  return tracks;
}

}  // namespace

NodeId SceneCurves::driving_curve(NodeId id, Channel c) const {
  const Graph& d = graph();
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

bool SceneCurves::has_keys(NodeId id) const {
  const Graph& d = graph();
  CurveSearch search(d);
  for (const Input& input : d.at(id).inputs.all())
    if (search.behind(input, [](const Node&) { return true; })) return true;
  return !tracks_of(d, id).empty();
}

std::vector<NodeId> SceneCurves::driving_curves(NodeId id) const {
  std::vector<NodeId> curves;
  for (const Node* curve : curves_behind(graph(), graph().at(id))) curves.push_back(curve->id);
  return curves;
}

std::vector<double> SceneCurves::key_times(NodeId id) const {
  std::vector<double> times;
  const std::vector<const Node*> curves = curves_behind(graph(), graph().at(id));
  std::size_t count = 0;
  for (const Node* driving : curves) count += driving->curve->keys().size();
  times.reserve(count);
  for (const Node* driving : curves) driving->curve->append_key_times(times);
  for (const Track* track : tracks_of(graph(), id))
    times.insert(times.end(), track->key_times().begin(), track->key_times().end());
  return times;
}

std::size_t SceneCurves::key_count(NodeId id) const {
  std::size_t count = 0;
  for (const Node* driving : curves_behind(graph(), graph().at(id))) count += driving->curve->keys().size();
  for (const Track* track : tracks_of(graph(), id)) count += track->key_times().size();
  return count;
}

}  // namespace vantorelix::standalone
