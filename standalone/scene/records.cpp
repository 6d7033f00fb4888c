#include "standalone/scene/records.h"

#include <algorithm>
#include <bit>
#include <unordered_set>

#include "standalone/scene/scene_data.h"

namespace vantorelix::standalone {
namespace {

constexpr std::uint64_t kLinear = triple(Channel::rotateX) | triple(Channel::scaleX) | triple(Channel::shearXY) |
                                  triple(Channel::rotateAxisX) | triple(Channel::jointOrientX) |
                                  triple(Channel::inverseScaleX) | bit(Channel::rotateOrder) |
                                  bit(Channel::segmentScaleCompensate);
constexpr std::uint64_t kPivots = triple(Channel::rotatePivotX) | triple(Channel::rotatePivotTranslateX) |
                                  triple(Channel::scalePivotX) | triple(Channel::scalePivotTranslateX);

bool is_current(const Evaluation& e, const Node& node) { return node.record && node.record->values == e.values; }

void add_driver(const Scene::Data& scene, Record& r, Channel channel) {
  Expression expression;
  if (!compile_driver(scene, r.node, id_of(channel), expression).empty()) {
    r.drivers_unfollowed = true;
    return;
  }
  DrivenChannel driven = {nullptr, 0, 0, channel};
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
void compile(Scene::Data& scene, const Node& node, Record& r) {
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
  r.structure = scene.evaluation.structure;
}

// Static channels, and whatever of the local matrix does not change with time, worked out the way the plain path does
// it at every frame.
void refresh_local(const Scene::Data& scene, const Node& node, Record& r) {
  r.channels = *node.channels;
  for (Expression& e : r.expressions) refresh_values(scene, e);
  r.factors = factors_of(r.channels, r.driven_mask, r.joint);
  r.linear_moves = (r.driven_mask & kLinear) != 0;
  r.shift_moves = r.factors.pivots && (r.driven_mask & (kLinear | kPivots)) != 0;
  r.rotations = rotations_of(r.channels, r.factors);
  const Basis turned = turn(r.channels, r.factors, r.rotations);
  set_rows(r.local, r.channels, r.factors, turned);
  r.shift = r.factors.pivots ? pivot_shift(r.channels, r.factors, turned) : host::Vector{};
  set_translation(r.local, placed(r.channels, r.factors, r.shift));
}

Record& local_record(Scene::Data& scene, Node& node) {
  if (!node.record) {
    node.record = std::make_unique<Record>();
    node.record->node = node.id;
  }
  Record& r = *node.record;
  if (r.structure != scene.evaluation.structure) compile(scene, node, r);
  if (r.local_values != scene.evaluation.values) refresh_local(scene, node, r);
  r.local_values = scene.evaluation.values;
  return r;
}

// What the world matrix takes besides the local one, their records being current.
void refresh_world(Scene::Data& scene, const Node& node, Record& r, const OffsetDriver& offset) {
  const bool may_inherit =
      (r.driven_mask & bit(Channel::inheritsTransform)) != 0 || r.channels[index(Channel::inheritsTransform)] != 0.0;
  const Node* parent = may_inherit && node.parent != kWorld ? scene.find(node.parent) : nullptr;
  r.parent = parent ? parent->record.get() : nullptr;
  r.offset_source = offset.followed ? &local_record(scene, scene.at(offset.source)) : nullptr;
  r.offset_is_local = offset.local;
  r.unfollowed = r.drivers_unfollowed || (offset.connected && !offset.followed);
  r.offset = scene.offset_parent_matrix(node);
  r.has_offset = r.offset_source != nullptr || !(r.offset == Affine{});
  const bool offset_moves =
      r.offset_source && (offset.local ? !r.offset_source->driven.empty() : r.offset_source->moves);
  r.moves = !r.driven.empty() || (r.parent && r.parent->moves) || offset_moves;
  r.stamp = 0;
  r.values = scene.evaluation.values;
  if (r.moves) return;
  if (r.offset_source) r.offset = r.offset_is_local ? r.offset_source->local : r.offset_source->world;
  r.world = r.has_offset ? r.local * r.offset : r.local;
  if (r.parent) r.world = r.world * r.parent->world;
  r.current = AffineView(r.world);
}

double value_of(Record& r, DrivenChannel& d, double frame) {
  return d.curve ? d.curve->evaluate(frame, d.hint) : r.expressions[d.expression].evaluate(frame);
}

void drive(Record& r, double frame, std::size_t first, std::size_t end) {
  for (std::size_t i = first; i < end; ++i) {
    DrivenChannel& d = r.driven[i];
    r.channels[index(d.channel)] = value_of(r, d, frame);
  }
}

bool drives(const Record& r, std::uint64_t channels) { return (r.driven_mask & channels) != 0; }

// The upper rows and the shift, the channels and the rotation being those of the frame.
inline void turn_rows(Record& r) {
  if (drives(r, triple(Channel::rotateAxisX))) r.rotations.axis = rotation_of(r.channels, Channel::rotateAxisX);
  if (drives(r, triple(Channel::jointOrientX))) r.rotations.orient = rotation_of(r.channels, Channel::jointOrientX);
  const Basis turned = turn(r.channels, r.factors, r.rotations);
  if (r.linear_moves) set_rows(r.local, r.channels, r.factors, turned);
  if (r.shift_moves) r.shift = pivot_shift(r.channels, r.factors, turned);
}

bool rows_move(const Record& r) { return r.linear_moves || r.shift_moves; }

// Brings `local` to a frame.
void move_local(Record& r, double frame) {
  drive(r, frame, 0, r.driven.size());
  if (rows_move(r) && is_scale_and_rotate(r.factors)) {
    set_scale_and_rotate(r.local, r.channels, r.factors);
  } else if (rows_move(r)) {
    if (drives(r, triple(Channel::rotateX) | bit(Channel::rotateOrder))) r.rotations.rotate = rotate_of(r.channels);
    turn_rows(r);
  }
  set_translation(r.local, placed(r.channels, r.factors, r.shift));
}

bool inherits(const Record& r) { return r.parent && r.channels[index(Channel::inheritsTransform)] != 0.0; }

// The matrix of this sample, where it is remembered.
inline AffineView remembered(Evaluation& e, const Record& r) {
  return e.slot != TimeCache::kNone ? e.cache.find(r.cached, e.slot) : AffineView();
}

// True when `current` is the matrix of this sample.
bool is_known(Evaluation& e, Record& r) {
  if (!r.moves || r.stamp == e.stamp) return true;
  const AffineView cached = remembered(e, r);
  if (!cached) return false;
  r.current = cached;
  r.stamp = e.stamp;
  return true;
}

void move_offset(Record& r, double frame) {
  if (!r.offset_source) return;
  if (!r.offset_is_local) {
    r.offset = r.offset_source->current.matrix();
  } else {
    if (!r.offset_source->driven.empty()) move_local(*r.offset_source, frame);
    r.offset = r.offset_source->local;
  }
}

// A record's local matrices at some times of a chunk, one after another, and what they are made of.
struct Block {
  using Column = std::array<double, kColumn>;

  std::size_t size;
  const double* frames;
  KeyPlaces places;
  std::array<Column, static_cast<std::size_t>(Channel::count)> channels;  // the driven ones, and those asked for
  AffineColumns local;

  double* at(Channel first, std::size_t part = 0) { return channels[index(first) + part].data(); }
};

void drive(Record& r, Block& b) {
  for (DrivenChannel& d : r.driven) {
    double* const values = b.at(d.channel);
    if (d.curve) {
      d.curve->evaluate({b.frames, b.size}, values, d.hint, b.places);
    } else {
      for (std::size_t i = 0; i < b.size; ++i) values[i] = value_of(r, d, b.frames[i]);
    }
  }
}

// Makes columns of the three channels from `first` on, driven or not.
void complete(const Record& r, Block& b, Channel first) {
  for (std::size_t c = index(first); c < index(first) + 3; ++c)
    if ((r.driven_mask >> c & 1) == 0) b.channels[c].fill(r.channels[c]);
}

const ColumnLoops& loops() {
  static const ColumnLoops& kWidest = *column_loops_here().back();
  return kWidest;
}

// R alone into the upper rows.
void turn_columns(const Record& r, Block& b) {
  complete(r, b, Channel::rotateX);
  const double* const angles = b.at(Channel::rotateX);
  const int order = rotate_order_of(r.channels);
  if (loops().rotations(angles, b.size, order, b.local.at[0])) return;
  for (std::size_t i = 0; i < b.size; ++i) {
    const Basis turned = rotation(angles[i], angles[kColumn + i], angles[2 * kColumn + i], order);
    for (std::size_t j = 0; j < 9; ++j) b.local.at[j][i] = turned[j / 3][j % 3];
  }
}

// Brings `local` to a time of the block, whose rotation is there, and puts it in the block.
void move_local(Record& r, Block& b, std::size_t i) {
  for (const DrivenChannel& d : r.driven) r.channels[index(d.channel)] = b.channels[index(d.channel)][i];
  if (rows_move(r)) {
    if (r.factors.rotate)
      for (std::size_t j = 0; j < 9; ++j) r.rotations.rotate[j / 3][j % 3] = b.local.at[j][i];
    turn_rows(r);
  }
  set_translation(r.local, placed(r.channels, r.factors, r.shift));
  b.local.set(i, r.has_offset ? r.local * r.offset : r.local);
}

// The same where `local` is S * R * T, or only T moves, and no offset follows.
void move_locals(Record& r, Block& b) {
  complete(r, b, Channel::translateX);
  if (!rows_move(r)) {
    for (std::size_t j = 0; j < 9; ++j) std::fill_n(b.local.at[j], b.size, r.local.m[j / 3][j % 3]);
  } else if (r.factors.scale) {
    complete(r, b, Channel::scaleX);
    for (std::size_t j = 0; j < 9; ++j)
      for (std::size_t i = 0; i < b.size; ++i) b.local.at[j][i] = b.at(Channel::scaleX, j / 3)[i] * b.local.at[j][i];
  }
  for (std::size_t j = 0; j < 3; ++j) std::copy_n(b.at(Channel::translateX, j), b.size, b.local.at[9 + j]);
}

// At once for all times around this one at which the parent's matrix is remembered, and that are usual: whoever asked
// for that one there will ask for this one, too. False, and nothing done, where that is the time of this sample alone,
// or where there is more to the matrix than channels and a parent.
bool move_world_ahead(Evaluation& e, Record& r, MatrixChunk& own) {
  if (!r.parent || r.offset_source || drives(r, bit(Channel::rotateOrder) | bit(Channel::inheritsTransform)))
    return false;
  const MatrixChunk* const parents = e.cache.chunk_with(r.parent->cached, e.slot);
  if (parents == nullptr) return false;
  const std::uint64_t wanted = parents->valid & ~own.valid & e.cache.usual(e.slot);
  const int place = static_cast<int>(e.slot % MatrixChunk::kSlots);
  const int after = std::countr_one(wanted >> place);
  const int before = std::countl_one(wanted << (63 - place)) - 1;
  const auto first = static_cast<std::size_t>(place - before);
  Block b;
  b.size = static_cast<std::size_t>(before) + static_cast<std::size_t>(after);
  if (b.size == 1) return false;
  b.frames = e.cache.times(e.slot - static_cast<TimeCache::Slot>(before));
  drive(r, b);
  if (rows_move(r) && r.factors.rotate) turn_columns(r, b);
  if (!r.has_offset && !r.factors.pivots && (!rows_move(r) || is_scale_and_rotate(r.factors))) {
    move_locals(r, b);
  } else {
    for (std::size_t i = 0; i < b.size; ++i) move_local(r, b, i);
  }
  loops().products(b.local.at[0], parents->matrices.at[0] + first, b.size, own.matrices.at[0] + first);
  own.valid |= ~std::uint64_t{0} >> (64 - b.size) << first;
  return true;
}

// The world matrix, with those that it needs known.
void move_world(Evaluation& e, Record& r) {
  // Worth remembering: somebody else will ask for it at this time.
  MatrixChunk* own = nullptr;
  if (e.slot != TimeCache::kNone && (r.asked || r.dependents > 1)) own = e.cache.chunk_for(r.cached, e.slot);
  r.stamp = e.stamp;
  if (own != nullptr && inherits(r) && move_world_ahead(e, r, *own)) {
    r.current = AffineView(own->matrices, e.slot % MatrixChunk::kSlots);
    return;
  }
  if (!r.driven.empty()) move_local(r, e.frame);
  move_offset(r, e.frame);
  if (inherits(r)) {
    r.world = (r.has_offset ? r.local * r.offset : r.local) * r.parent->current;
  } else {
    r.world = r.has_offset ? r.local * r.offset : r.local;
  }
  r.current = AffineView(r.world);
  if (own != nullptr) own->set(e.slot, r.world);
}

// Makes `current` of the record that of this sample: what it hangs on first, on a stack of our own, since chains may
// be longer than the machine's.
void know(Evaluation& e, Record& target) {
  if (is_known(e, target)) return;
  e.stack.push_back(&target);
  while (!e.stack.empty()) {
    Record& r = *e.stack.back();
    if (r.parent && !is_known(e, *r.parent)) {
      e.stack.push_back(r.parent);
    } else if (r.offset_source && !r.offset_is_local && !is_known(e, *r.offset_source)) {
      e.stack.push_back(r.offset_source);
    } else {
      move_world(e, r);
      e.stack.pop_back();
    }
  }
}

void begin_sample(Evaluation& e, double frame) {
  if (e.stamp_motion == e.motion && e.frame == frame) return;
  if (e.stamp_motion != e.motion) e.cache.clear();
  e.stamp_motion = e.motion;
  e.frame = frame;
  ++e.stamp;
  e.slot = e.cache.slot(frame);
}

// The upward closure of a node: the parents and the sources of offsets, whether or not they are followed.
bool reaches(const Scene::Data& scene, const Node& from, NodeId wanted) {
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

OffsetDriver offset_driver(const Scene::Data& scene, const Node& node) {
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

Record& record_of(Scene::Data& scene, NodeId id) {
  Node& target = scene.transform(id);
  if (is_current(scene.evaluation, target)) return *target.record;
  std::vector<Node*> stack = {&target};
  const auto needed = [&](NodeId other) {
    Node* node = scene.find(other);
    if (other == kWorld || node == nullptr || is_current(scene.evaluation, *node)) return false;
    stack.push_back(node);
    return true;
  };
  while (!stack.empty()) {
    Node& node = *stack.back();
    if (!is_current(scene.evaluation, node)) {
      if (needed(node.parent)) continue;
      const OffsetDriver offset = offset_driver(scene, node);
      if (offset.followed && !offset.local && needed(offset.source)) continue;
      refresh_world(scene, node, local_record(scene, node), offset);
    }
    stack.pop_back();
  }
  return *target.record;
}

Channels channels_at(const Record& record, double frame) {
  Channels channels = record.channels;
  for (const DrivenChannel& d : record.driven)
    channels[index(d.channel)] = d.curve ? d.curve->evaluate(frame) : record.expressions[d.expression].evaluate(frame);
  return channels;
}

host::Vector translation_of(Evaluation& e, Record& r, double frame) {
  if (!r.moves) return r.world.translation();
  const bool alone = (r.parent == nullptr || !r.parent->moves) && r.offset_source == nullptr;
  if (!alone) {
    begin_sample(e, frame);
    if (const AffineView own = remembered(e, r)) return own.translation();
    if (r.dependents > 0 && e.slot != TimeCache::kNone) {  // it will be needed
      know(e, r);
      return r.current.translation();
    }
  }
  host::Vector t;
  if (!r.factors.pivots) {
    drive(r, frame, 0, r.driven_translate);
    if ((r.driven_mask & bit(Channel::inheritsTransform)) != 0) drive(r, frame, r.driven_translate, r.driven.size());
    t = vector_at(r.channels, Channel::translateX);
  } else {
    if (!r.driven.empty()) move_local(r, frame);
    t = r.local.translation();
  }
  if (r.offset_source && !r.offset_is_local) know(e, *r.offset_source);
  move_offset(r, frame);
  if (r.has_offset) t = transform_point(t, r.offset);
  if (!inherits(r)) return t;
  if (const AffineView parent = remembered(e, *r.parent)) return transform_point(t, parent);
  know(e, *r.parent);
  return transform_point(t, r.parent->current);
}

}  // namespace vantorelix::standalone
