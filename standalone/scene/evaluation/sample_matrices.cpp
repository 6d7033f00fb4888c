// World matrices of a sample, the fast way: remembered, and many worked out at once.
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <span>

#include "standalone/scene/evaluation/records.h"

namespace vantorelix::standalone {
namespace {

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
  static const ColumnLoops& kWidest = *column_widths().here.back();
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

// The times of the sample's chunk at which the node has its keys from now on.
std::uint64_t next_keys(Evaluation& e, const Record& asked) {
  constexpr std::size_t kMost = MatrixChunk::kSlots;
  std::array<std::span<const Key>, kChannelCount> ahead;
  std::size_t curves = 0;
  for (const DrivenChannel& d : asked.driven) {
    if (!d.curve) continue;
    const std::vector<Key>& keys = d.curve->keys();
    const auto next = std::lower_bound(keys.begin(), keys.end(), e.frame,
                                       [](const Key& key, double frame) { return key.time < frame; });
    ahead[curves++] = {next, keys.end()};
  }
  std::uint64_t bits = std::uint64_t{1} << e.slot % kMost;
  double time = e.frame;
  for (std::size_t i = 0; i < kMost; ++i) {
    double next = std::numeric_limits<double>::infinity();
    for (std::span<const Key>& keys : std::span(ahead).first(curves)) {
      if (!keys.empty() && keys.front().time == time) keys = keys.subspan(1);
      if (!keys.empty()) next = std::min(next, keys.front().time);
    }
    time = next;
    const TimeCache::Slot slot = std::isinf(time) ? TimeCache::kNone : e.cache.number(time);
    if (slot == TimeCache::kNone) break;
    if (slot / kMost == e.slot / kMost) bits |= std::uint64_t{1} << slot % kMost;
  }
  return bits;
}

// The times of the sample's chunk that will be asked for next. Whoever has read when a node has its keys asks where it
// is then; others ask at the times at which everybody does.
std::uint64_t expected_times(Evaluation& e) {
  if (!e.expected) e.expected = e.graph.keys_read == e.asked->node ? next_keys(e, *e.asked) : e.cache.usual(e.slot);
  return *e.expected;
}

// At once for all times around this one that are expected and at which the parent's matrix is there. False, and nothing
// done, where that is the time of this sample alone, or where there is more to the matrix than channels and a parent.
bool move_world_ahead(Evaluation& e, Record& r, MatrixChunk& own) {
  if (r.offset_source || drives(r, bit(Channel::rotateOrder) | bit(Channel::inheritsTransform))) return false;
  const bool follows = inherits(r) && r.parent->moves;
  const MatrixChunk* const parents = follows ? e.cache.chunk_with(r.parent->cached, e.slot) : nullptr;
  if (follows && parents == nullptr) return false;
  const std::uint64_t there = follows ? parents->valid : ~std::uint64_t{0};
  const std::uint64_t wanted = there & ~own.valid & expected_times(e);
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
  if (follows) {
    loops().products(b.local.at[0], parents->matrices.at[0] + first, b.size, own.matrices.at[0] + first);
  } else if (inherits(r)) {
    AffineColumns still;
    for (std::size_t j = 0; j < 12; ++j) std::fill_n(still.at[j], b.size, r.parent->world.m[j / 3][j % 3]);
    loops().products(b.local.at[0], still.at[0], b.size, own.matrices.at[0] + first);
  } else {
    for (std::size_t j = 0; j < 12; ++j) std::copy_n(b.local.at[j], b.size, own.matrices.at[j] + first);
  }
  own.valid |= ~std::uint64_t{0} >> (64 - b.size) << first;
  return true;
}

// The world matrix, with those that it needs known.
void move_world(Evaluation& e, Record& r) {
  // Worth remembering: somebody else will ask for it at this time.
  MatrixChunk* own = nullptr;
  if (e.slot != TimeCache::kNone && (r.asked || r.dependents > 1)) own = e.cache.chunk_for(r.cached, e.slot);
  r.stamp = e.stamp;
  if (own != nullptr && move_world_ahead(e, r, *own)) {
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

// As know, for the sake of a node that is asked for.
void know_for(Evaluation& e, const Record& asked, Record& target) {
  e.asked = &asked;
  e.expected.reset();
  know(e, target);
}

void begin_sample(Evaluation& e, double frame) {
  if (e.stamp_motion == e.graph.counts.motion && e.frame == frame) return;
  if (e.stamp_motion != e.graph.counts.motion) e.cache.clear();
  e.stamp_motion = e.graph.counts.motion;
  e.frame = frame;
  ++e.stamp;
  e.slot = e.cache.slot(frame);
}

}  // namespace

Vector translation_of(Evaluation& e, Record& r, double frame) {
  if (!r.moves) return r.world.translation();
  const bool alone = (r.parent == nullptr || !r.parent->moves) && r.offset_source == nullptr;
  if (!alone) {
    begin_sample(e, frame);
    if (const AffineView own = remembered(e, r)) return own.translation();
    if (r.dependents > 0 && e.slot != TimeCache::kNone) {  // it will be needed
      know_for(e, r, r);
      return r.current.translation();
    }
  }
  Vector t;
  if (!r.factors.pivots) {
    drive(r, frame, 0, r.driven_translate);
    if ((r.driven_mask & bit(Channel::inheritsTransform)) != 0) drive(r, frame, r.driven_translate, r.driven.size());
    t = vector_at(r.channels, Channel::translateX);
  } else {
    if (!r.driven.empty()) move_local(r, frame);
    t = r.local.translation();
  }
  if (r.offset_source && !r.offset_is_local) know_for(e, r, *r.offset_source);
  move_offset(r, frame);
  if (r.has_offset) t = transform_point(t, r.offset);
  if (!inherits(r)) return t;
  if (alone) return transform_point(t, r.parent->current);  // what is remembered may be from before it stood still
  if (const AffineView parent = remembered(e, *r.parent)) return transform_point(t, parent);
  know_for(e, r, *r.parent);
  return transform_point(t, r.parent->current);
}

}  // namespace vantorelix::standalone
