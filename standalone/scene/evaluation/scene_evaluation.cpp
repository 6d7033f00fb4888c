#include "standalone/scene/evaluation/scene_evaluation.h"

#include <unordered_set>

#include "standalone/scene/evaluation/evaluation.h"

namespace vantorelix::standalone {
namespace {

// The transform whose matrix a node shows: its own, or a shape's parent's.
NodeId transform_of(const Graph& scene, NodeId id) {
  const Node& node = scene.at(id);
  return node.type->category == Category::shape ? node.parent : id;
}

// Every transform whose local matrix goes into a node's world matrix, the node first.
std::vector<const Record*> everything_behind(const Record& first) {
  std::vector<const Record*> all = {&first};
  std::unordered_set<const Record*> seen = {all[0]};
  for (std::size_t i = 0; i < all.size(); ++i) {
    const Record* r = all[i];
    if (r->parent && seen.insert(r->parent).second) all.push_back(r->parent);
    if (r->offset_source && !r->offset_is_local && seen.insert(r->offset_source).second)
      all.push_back(r->offset_source);
  }
  return all;
}

// Calls found(curve) for each curve that the record's own channels are evaluated from, until it says true.
template <class Found>
bool any_curve(const Record& r, Found found) {
  for (const DrivenChannel& d : r.driven) {
    if (d.curve && found(d.curve)) return true;
    if (d.curve) continue;
    for (const Operation& o : r.expressions[d.expression].operations)
      if (o.kind == Operation::Kind::curve && found(o.curve)) return true;
  }
  return false;
}

bool varies(const Record& r) {
  if (any_curve(r, [](const AnimCurve* curve) { return !curve->is_constant(); })) return true;
  for (const DrivenChannel& d : r.driven) {
    if (d.curve) continue;
    for (const Operation& o : r.expressions[d.expression].operations)
      if (o.kind == Operation::Kind::track && o.track->moves()) return true;
  }
  return false;
}

void list_unfollowed(const Graph& scene, const Record& r, std::vector<std::string>& texts) {
  const Node& node = scene.at(r.node);
  for (const Input& input : node.inputs.all()) {
    if (input.source == kNoNode || !(is_channel(input.attribute) || is_compound(input.attribute))) continue;
    const AttributeId first = is_compound(input.attribute) ? part(input.attribute, 0) : input.attribute;
    const AttributeId end = is_compound(input.attribute) ? first + 3 : first + 1;
    for (AttributeId c = first; c < end; ++c) {
      Expression expression;
      const std::string why = compile_driver(scene, r.node, c, expression);
      if (why.empty()) continue;
      texts.push_back(scene.plug_name(node, input.attribute) + " is driven by " + why +
                      ", which is not followed; it keeps its static value; bake it before saving");
      break;
    }
  }
  const OffsetDriver offset = offset_driver(scene, node);
  if (!offset.connected || offset.followed) return;
  const Node& source = scene.at(offset.source);
  texts.push_back(scene.plug_name(node, attribute::offsetParentMatrix) + " is driven by " +
                  (offset.cycle ? "a cycle of connections through " : "") + source.type->name + " " +
                  scene.unique_name(source) +
                  ", which is not followed; it keeps its static value; bake it before saving");
}

}  // namespace

Affine SceneEvaluation::world_matrix(NodeId node, double frame) const {
  return evaluation_->plain.world(transform_of(evaluation_->graph, node), frame);
}

Affine SceneEvaluation::local_matrix(NodeId node, double frame) const {
  if (evaluation_->graph.at(node).type->category == Category::shape) return Affine{};
  return evaluation_->plain.local(node, frame);
}

Affine SceneEvaluation::matrix_above(NodeId transform, double frame) const {
  return evaluation_->plain.above(transform, frame);
}

double SceneEvaluation::channel_at(NodeId node, Channel c, double frame) const {
  return channels_at(evaluation_->records.of(node), frame)[index(c)];
}

bool SceneEvaluation::is_animated(NodeId node) const {
  const NodeId transform = transform_of(evaluation_->graph, node);
  if (!evaluation_->graph.at(transform).channels) return false;
  for (const Record* r : everything_behind(evaluation_->records.of(transform))) {
    if (varies(*r)) return true;
    if (r->offset_source && r->offset_is_local && varies(*r->offset_source)) return true;
  }
  return false;
}

bool SceneEvaluation::moves_with(NodeId node, NodeId other) const {
  Records& records = evaluation_->records;
  const Record& edited = records.of(other);
  std::unordered_set<const AnimCurve*> curves;
  any_curve(edited, [&](const AnimCurve* curve) { return curves.insert(curve), false; });
  const auto moved = [&](const Record& r) {
    return &r == &edited || any_curve(r, [&](const AnimCurve* curve) { return curves.count(curve) != 0; });
  };
  for (const Record* r : everything_behind(records.of(transform_of(evaluation_->graph, node)))) {
    if (moved(*r)) return true;
    if (r->offset_source && r->offset_is_local && moved(*r->offset_source)) return true;
  }
  return false;
}

std::vector<std::string> SceneEvaluation::not_followed(NodeId node) const {
  std::vector<std::string> texts;
  const NodeId transform = transform_of(evaluation_->graph, node);
  if (!evaluation_->graph.at(transform).channels) return texts;
  for (const Record* r : everything_behind(evaluation_->records.of(transform))) {
    if (r->unfollowed) list_unfollowed(evaluation_->graph, *r, texts);
    if (r->offset_source && r->offset_is_local && r->offset_source->drivers_unfollowed)
      list_unfollowed(evaluation_->graph, *r->offset_source, texts);
  }
  return texts;
}

}  // namespace vantorelix::standalone
