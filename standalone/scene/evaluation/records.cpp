#include "standalone/scene/evaluation/records.h"

#include <algorithm>
#include <unordered_set>

namespace vantorelix::standalone {
namespace {

constexpr std::uint64_t kLinear = triple(Channel::rotateX) | triple(Channel::scaleX) | triple(Channel::shearXY) |
                                  triple(Channel::rotateAxisX) | triple(Channel::jointOrientX) |
                                  triple(Channel::inverseScaleX) | bit(Channel::rotateOrder) |
                                  bit(Channel::segmentScaleCompensate);
constexpr std::uint64_t kPivots = triple(Channel::rotatePivotX) | triple(Channel::rotatePivotTranslateX) |
                                  triple(Channel::scalePivotX) | triple(Channel::scalePivotTranslateX);

void add_driver(const Graph& scene, Record& r, Channel channel) {
  Expression expression;
  if (!compile_driver(scene, r.node, id_of(channel), expression).empty()) {
    r.drivers_unfollowed = true;
    return;
  }
  DrivenChannel driven = {nullptr, 0, channel};
  if (expression.operations.size() == 1 && expression.operations[0].kind == Operation::Kind::curve) {
    driven.curve = expression.operations[0].curve;
  } else {
    driven.expression = static_cast<std::uint32_t>(r.expressions.size());
    r.expressions.push_back(std::move(expression));
  }
  r.driven.push_back(driven);
  r.driven_mask |= bit(channel);
}

// The structure: what drives the node itself.
void compile(const Graph& scene, const Node& node, Record& r) {
  r.driven.clear();
  r.expressions.clear();
  r.driven_mask = 0;
  r.drivers_unfollowed = false;
  r.joint = node.type->names == NameSet::joint;
  std::uint64_t inputs = 0;
  for (const Input& input : node.inputs.all()) {
    if (input.source == kNoNode) continue;
    if (is_channel(input.attribute)) inputs |= std::uint64_t{1} << input.attribute;
    if (is_compound(input.attribute)) inputs |= std::uint64_t{7} << first_part(input.attribute);
  }
  for (AttributeId c = 0; c < kChannelCount; ++c)
    if ((inputs >> c & 1) != 0) add_driver(scene, r, static_cast<Channel>(c));
  r.driven_translate = static_cast<std::size_t>(
      std::count_if(r.driven.begin(), r.driven.end(), [](const auto& d) { return d.channel <= Channel::translateZ; }));

  r.dependents = 0;
  for (const NodeId child : node.children)
    if (const Node* n = scene.find(child); n && n->channels) ++r.dependents;
  for (const Output& out : node.outputs)
    if (out.attribute == attribute::offsetParentMatrix && scene.connection_stands(node, out)) ++r.dependents;
  r.structure = scene.counts.structure;
}

// Static channels, and whatever of the local matrix does not change with time, worked out the way the plain path does
// it at every frame.
void refresh_local(const Graph& scene, const Node& node, Record& r) {
  r.channels = *node.channels;
  for (Expression& e : r.expressions) refresh_values(scene, e);
  r.factors = factors_of(r.channels, r.driven_mask, r.joint);
  r.linear_moves = (r.driven_mask & kLinear) != 0;
  r.shift_moves = r.factors.pivots && (r.driven_mask & (kLinear | kPivots)) != 0;
  r.rotations = rotations_of(r.channels, r.factors);
  const Basis turned = turn(r.channels, r.factors, r.rotations);
  set_rows(r.local, r.channels, r.factors, turned);
  r.shift = r.factors.pivots ? pivot_shift(r.channels, r.factors, turned) : Vector{};
  set_translation(r.local, placed(r.channels, r.factors, r.shift));
}

// Whether the world matrix of `from` hangs on `wanted`, through parents and sources of offset parent matrices. Those
// that are not followed for another reason count too.
bool reaches(const Graph& scene, const Node& from, NodeId wanted) {
  std::vector<const Node*> open = {&from};
  std::unordered_set<NodeId> seen;
  while (!open.empty()) {
    const Node* node = open.back();
    open.pop_back();
    if (node->id == wanted) return true;
    if (!seen.insert(node->id).second) continue;
    if (const Node* parent = scene.find(node->parent); parent && node->parent != kWorld) open.push_back(parent);
    const Input* input = node->inputs.find(attribute::offsetParentMatrix);
    if (input && input->source_attribute == attribute::worldMatrix)
      if (const Node* source = scene.find(input->source)) open.push_back(source);
  }
  return false;
}

}  // namespace

OffsetDriver offset_driver(const Graph& scene, const Node& node) {
  OffsetDriver driver;
  const Input* input = node.inputs.find(attribute::offsetParentMatrix);
  if (input == nullptr) return driver;
  driver.connected = true;
  const Node* source = scene.find(input->source);
  driver.source = input->source;
  driver.local = input->source_attribute == attribute::matrix;
  const bool matrix = driver.local || input->source_attribute == attribute::worldMatrix;
  if (!source || !source->channels || source->type->category != Category::transform || !matrix) return driver;
  driver.cycle = !driver.local && reaches(scene, *source, node.id);
  driver.followed = !driver.cycle;
  return driver;
}

bool Records::is_current(const Node& node) const {
  return node.id < of_node_.size() && of_node_[node.id] && of_node_[node.id]->values == scene_.counts.values;
}

Record& Records::local(const Node& node) {
  if (of_node_.size() <= node.id) of_node_.resize(node.id + 1);
  std::unique_ptr<Record>& place = of_node_[node.id];
  if (!place) {
    place = std::make_unique<Record>();
    place->node = node.id;
  }
  node.compiled = true;
  Record& r = *place;
  if (r.structure != scene_.counts.structure) compile(scene_, node, r);
  if (r.local_values != scene_.counts.values) refresh_local(scene_, node, r);
  r.local_values = scene_.counts.values;
  return r;
}

// Refreshes what the world matrix takes besides the local one. The records of parent and offset source must be current.
void Records::refresh_world(const Node& node, Record& r, const OffsetDriver& offset) {
  const bool may_inherit =
      (r.driven_mask & bit(Channel::inheritsTransform)) != 0 || r.channels[index(Channel::inheritsTransform)] != 0.0;
  const Node* parent = may_inherit && node.parent != kWorld ? scene_.find(node.parent) : nullptr;
  r.parent = parent ? of_node_[parent->id].get() : nullptr;
  r.offset_source = offset.followed ? &local(scene_.at(offset.source)) : nullptr;
  r.offset_is_local = offset.local;
  r.unfollowed = r.drivers_unfollowed || (offset.connected && !offset.followed);
  r.offset = scene_.offset_parent_matrix(node);
  r.has_offset = r.offset_source != nullptr || !(r.offset == Affine{});
  const bool offset_moves =
      r.offset_source && (offset.local ? !r.offset_source->driven.empty() : r.offset_source->moves);
  r.moves = !r.driven.empty() || (r.parent && r.parent->moves) || offset_moves;
  r.behind = 1;
  if (r.parent) r.behind += r.parent->behind;
  if (r.offset_source && !r.offset_is_local) r.behind += r.offset_source->behind;
  r.behind = r.moves ? std::min(r.behind, Record::kMaxBehind) : 0;
  r.values = scene_.counts.values;
  if (r.moves) return;
  if (r.offset_source) r.offset = r.offset_is_local ? r.offset_source->local : r.offset_source->world;
  r.world = r.has_offset ? r.local * r.offset : r.local;
  if (r.parent) r.world = r.world * r.parent->world;
}

Record& Records::of(NodeId id) {
  const Node& target = scene_.transform(id);
  if (is_current(target)) return *of_node_[id];
  std::vector<const Node*> stack = {&target};
  const auto needed = [&](NodeId other) {
    const Node* node = scene_.find(other);
    if (other == kWorld || node == nullptr || is_current(*node)) return false;
    stack.push_back(node);
    return true;
  };
  while (!stack.empty()) {
    const Node& node = *stack.back();
    if (!is_current(node)) {
      if (needed(node.parent)) continue;
      const OffsetDriver offset = offset_driver(scene_, node);
      if (offset.followed && !offset.local && needed(offset.source)) continue;
      refresh_world(node, local(node), offset);
    }
    stack.pop_back();
  }
  return *of_node_[id];
}

Channels channels_at(const Record& record, double frame) {
  Channels channels = record.channels;
  for (const DrivenChannel& d : record.driven)
    channels[index(d.channel)] = d.curve ? d.curve->evaluate(frame) : record.expressions[d.expression].evaluate(frame);
  return channels;
}

}  // namespace vantorelix::standalone
