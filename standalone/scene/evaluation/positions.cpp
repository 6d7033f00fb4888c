#include "standalone/scene/evaluation/positions.h"

#include <algorithm>

namespace vantorelix::standalone {
namespace {

bool drives(const Record& r, std::uint64_t channels) { return (r.driven_mask & channels) != 0; }
bool rows_move(const Record& r) { return r.linear_moves || r.shift_moves; }
bool drives_inheriting(const Record& r) { return drives(r, bit(Channel::inheritsTransform)); }
bool hangs_on_moving(const Record& r) { return (r.parent && r.parent->moves) || r.offset_source; }

const ColumnLoops& loops() {
  static const ColumnLoops& kWidest = *column_widths().here.back();
  return kWidest;
}

// A record's channels and local matrices at the times that are worked out together. A column of `channels` has values
// only where the channel is driven, or after complete().
struct Block {
  using Column = std::array<double, kColumn>;

  explicit Block(Times& together) : times(together), frames(together.frames()) {}

  Times& times;
  std::span<const double> frames;
  std::array<Column, static_cast<std::size_t>(Channel::count)> channels;  // the driven ones, and those completed
  AffineColumns local;

  std::size_t size() const { return frames.size(); }
  double* at(Channel first, std::size_t part = 0) { return channels[index(first) + part].data(); }
};

void drive(Record& r, Block& b, std::size_t first, std::size_t end) {
  for (std::size_t k = first; k < end; ++k) {
    DrivenChannel& d = r.driven[k];
    double* const values = b.at(d.channel);
    if (d.curve) {
      d.curve->evaluate(b.frames, values, b.times.on_curve);
    } else {
      const Expression& expression = r.expressions[d.expression];
      std::transform(b.frames.begin(), b.frames.end(), values, [&](double t) { return expression.evaluate(t); });
    }
  }
}

// Makes columns of the three channels from `first` on, driven or not.
void complete(const Record& r, Block& b, Channel first) {
  for (std::size_t c = index(first); c < index(first) + 3; ++c)
    if ((r.driven_mask >> c & 1) == 0) std::fill_n(b.channels[c].data(), b.size(), r.channels[c]);
}

// Writes the matrix R (rotate) into the upper rows of b.local. Only where the rotate order is not driven.
void turn_columns(const Record& r, Block& b) {
  complete(r, b, Channel::rotateX);
  const double* const angles = b.at(Channel::rotateX);
  const int order = rotate_order_of(r.channels);
  if (loops().rotations(angles, b.size(), order, b.local.at[0])) return;
  for (std::size_t i = 0; i < b.size(); ++i) {
    const Basis turned = rotation(angles[i], angles[kColumn + i], angles[2 * kColumn + i], order);
    for (std::size_t j = 0; j < 9; ++j) b.local.at[j][i] = turned[j / 3][j % 3];
  }
}

// Brings r.rotations to time i: R from b.local, where turn_columns has left it, the others from r.channels.
void take_rotations(Record& r, const Block& b, std::size_t i) {
  if (drives(r, bit(Channel::rotateOrder))) {
    r.rotations.rotate = rotate_of(r.channels);
  } else if (r.factors.rotate) {
    for (std::size_t j = 0; j < 9; ++j) r.rotations.rotate[j / 3][j % 3] = b.local.at[j][i];
  }
  if (drives(r, triple(Channel::rotateAxisX))) r.rotations.axis = rotation_of(r.channels, Channel::rotateAxisX);
  if (drives(r, triple(Channel::jointOrientX))) r.rotations.orient = rotation_of(r.channels, Channel::jointOrientX);
}

// The general way: brings `channels` and `local` of the record to one time after another, and copies `local` out.
void compose_each(Record& r, Block& b) {
  for (std::size_t i = 0; i < b.size(); ++i) {
    for (const DrivenChannel& d : r.driven) r.channels[index(d.channel)] = b.channels[index(d.channel)][i];
    if (rows_move(r)) {
      take_rotations(r, b, i);
      const Basis turned = turn(r.channels, r.factors, r.rotations);
      if (r.linear_moves) set_rows(r.local, r.channels, r.factors, turned);
      if (r.shift_moves) r.shift = pivot_shift(r.channels, r.factors, turned);
    }
    set_translation(r.local, placed(r.channels, r.factors, r.shift));
    for (std::size_t j = 0; j < 12; ++j) b.local.at[j][i] = r.local.m[j / 3][j % 3];
  }
}

// The fast way, column by column, for S * R * T (turn_columns has made R) and for matrices of which only T moves.
void compose_columns(Record& r, Block& b) {
  if (!rows_move(r)) {
    for (std::size_t j = 0; j < 9; ++j) std::fill_n(b.local.at[j], b.size(), r.local.m[j / 3][j % 3]);
  } else if (r.factors.scale) {
    complete(r, b, Channel::scaleX);
    for (std::size_t j = 0; j < 9; ++j)
      for (std::size_t i = 0; i < b.size(); ++i) b.local.at[j][i] = b.at(Channel::scaleX, j / 3)[i] * b.local.at[j][i];
  }
  complete(r, b, Channel::translateX);
  for (std::size_t j = 0; j < 3; ++j) std::copy_n(b.at(Channel::translateX, j), b.size(), b.local.at[9 + j]);
}

void move_local(Record& r, Block& b) {
  const bool order_moves = drives(r, bit(Channel::rotateOrder));
  drive(r, b, 0, r.driven.size());
  if (rows_move(r) && r.factors.rotate && !order_moves) turn_columns(r, b);
  if (r.factors.pivots || order_moves || (rows_move(r) && !is_scale_and_rotate(r.factors))) {
    compose_each(r, b);
  } else {
    compose_columns(r, b);
  }
}

Columns all_of(AffineColumns& columns) { return {columns.at[0], kColumn}; }

// The same matrix at `count` times.
Columns repeated(const Affine& m, std::size_t count, AffineColumns& into) {
  for (std::size_t j = 0; j < 12; ++j) std::fill_n(into.at[j], count, m.m[j / 3][j % 3]);
  return all_of(into);
}

// The world matrices of a record that is_known; `still` is room for a matrix that does not move.
Columns world_of(const Record& r, std::size_t count, AffineColumns& still) {
  return r.moves ? r.current : repeated(r.world, count, still);
}

// The offset parent matrices of a record that has one; `own` is room for those that no record keeps.
Columns offset_of(const Record& r, const Block& b, AffineColumns& own) {
  if (!r.offset_source) return repeated(r.offset, b.size(), own);
  if (!r.offset_is_local) return world_of(*r.offset_source, b.size(), own);
  if (r.offset_source->driven.empty()) return repeated(r.offset_source->local, b.size(), own);
  Block source(b.times);
  move_local(*r.offset_source, source);
  own = source.local;
  return all_of(own);
}

void copy(const Columns& from, std::size_t first, std::size_t count, const Columns& to) {
  for (std::size_t j = 0; j < 12; ++j) std::copy_n(from[j] + first, count, to[j]);
}

// First `m`, then `by`, in place.
void multiply(AffineColumns& m, const Columns& by, std::size_t count) {
  AffineColumns product;
  loops().products(m.at[0], by.first, by.stride, count, product.at[0], kColumn);
  copy(all_of(product), 0, count, all_of(m));
}

// The place of a slot in its chunk, as columns that begin there.
Columns in_chunk(MatrixChunk& chunk, Slot slot) { return {chunk.matrices.at[0] + slot % kColumn, kColumn}; }

// Transforms `count` points, given as three columns, by a matrix each, in place: as transform_point does.
void transform(double* const point[3], const Columns& by, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const Vector p = {point[0][i], point[1][i], point[2][i]};
    for (std::size_t j = 0; j < 3; ++j)
      point[j][i] = p.x * by[j][i] + p.y * by[3 + j][i] + p.z * by[6 + j][i] + by[9 + j][i];
  }
}

}  // namespace

void Positions::expect(std::span<const double> times) {
  coming_ = std::min(times.size(), frames_.size());
  std::copy_n(times.begin(), coming_, frames_.begin());
  next_ = made_ = 0;
}

// Works out the time that is asked for and some of those announced after it. How many depends on how many matrices move
// for each time: at most kMaxMatrices in all, so that no single call takes long.
void Positions::make(Record& r, double frame) {
  constexpr std::size_t kMaxMatrices = 16384;
  const bool expected = next_ < coming_ && comes_next(frame);
  if (!expected) expect({&frame, 1});
  made_ = next_;  // none, until all are there
  if (made_motion_ != motion_ || cache_.is_full()) cache_.clear();
  const std::size_t cheap = std::clamp<std::size_t>(kMaxMatrices / r.behind, 1, kColumn);
  const std::span<const double> frames = std::span(frames_).subspan(next_, std::min(cheap, coming_ - next_));
  if (expected && hangs_on_moving(r)) {
    together_ = &cache_.numbered(frames);
  } else {
    together_ = &unnumbered_;
    unnumbered_.size = frames.size();
    std::copy(frames.begin(), frames.end(), unnumbered_.frame.begin());
    unnumbered_.on_curve.count = 0.0;
  }
  ++stamp_;
  passing_used_ = 0;
  work_out(r);
  made_ = next_ + together_->size;
  made_for_ = &r;
  made_motion_ = motion_;
}

void Positions::work_out(Record& r) {
  if (!together_->numbered || r.dependents == 0) return work_out_translation(r);
  // Nodes below need this one's matrices, so they are made, and the positions are read from them.
  if (remembers(r)) return take(r);
  know(r);
  for (std::size_t i = 0; i < together_->size; ++i)
    positions_[next_ + i] = {r.current[9][i], r.current[10][i], r.current[11][i]};
}

// Reads the positions out of matrices that the cache has.
void Positions::take(const Record& r) {
  for (std::size_t i = 0; i < together_->size; ++i) {
    const Columns there = in_chunk(*cache_.find(r.cached, together_->slot[i]), together_->slot[i]);
    positions_[next_ + i] = {there[9][0], there[10][0], there[11][0]};
  }
}

// Works out the positions only, for a node whose matrices nobody else needs: a point goes up through the parents.
void Positions::work_out_translation(Record& r) {
  Block b(*together_);
  double* const point[3] = {b.local.at[9], b.local.at[10], b.local.at[11]};
  if (r.factors.pivots) {
    move_local(r, b);
  } else {
    drive(r, b, 0, r.driven_translate);
    if (drives_inheriting(r)) drive(r, b, r.driven_translate, r.driven.size());
    complete(r, b, Channel::translateX);
    for (std::size_t j = 0; j < 3; ++j) std::copy_n(b.at(Channel::translateX, j), b.size(), point[j]);
  }
  AffineColumns other;
  if (r.offset_source && !r.offset_is_local) know(*r.offset_source);
  if (r.has_offset) transform(point, offset_of(r, b, other), b.size());
  for (std::size_t i = 0; i < b.size(); ++i) positions_[next_ + i] = {point[0][i], point[1][i], point[2][i]};
  if (!r.parent) return;
  know(*r.parent);
  transform(point, world_of(*r.parent, b.size(), other), b.size());
  for (std::size_t i = 0; i < b.size(); ++i)
    if (!drives_inheriting(r) || b.at(Channel::inheritsTransform)[i] != 0.0)
      positions_[next_ + i] = {point[0][i], point[1][i], point[2][i]};
}

// Makes `current` of a record hold its world matrices, after those of everything that it hangs on. With a stack of its
// own instead of recursion, since a hierarchy may be deeper than the machine's stack.
void Positions::know(Record& target) {
  if (is_known(target)) return;
  open_.assign(1, &target);
  while (!open_.empty()) {
    Record& r = *open_.back();
    if (r.parent && !is_known(*r.parent)) {
      open_.push_back(r.parent);
    } else if (r.offset_source && !r.offset_is_local && !is_known(*r.offset_source)) {
      open_.push_back(r.offset_source);
    } else {
      move_world(r);
      open_.pop_back();
    }
  }
}

bool Positions::is_known(Record& r) {
  if (!r.moves || r.stamp == stamp_) return true;
  if (!together_->numbered || !remembers(r)) return false;
  recall(r);
  return true;
}

// Whether the cache has the record's matrices at all times that are worked out together.
bool Positions::remembers(const Record& r) const {
  const auto has = [&](Slot slot, std::uint64_t places) {
    const MatrixChunk* const chunk = cache_.find(r.cached, slot);
    return chunk != nullptr && (chunk->valid & places) == places;
  };
  if (together_->in_a_row) return has(together_->slot[0], together_->places());
  const auto end = together_->slot.begin() + static_cast<std::ptrdiff_t>(together_->size);
  return std::all_of(together_->slot.begin(), end, [&](Slot slot) { return has(slot, bit_of(slot)); });
}

void Positions::recall(Record& r) {
  r.stamp = stamp_;
  if (together_->in_a_row) {
    r.current = in_chunk(*cache_.find(r.cached, together_->slot[0]), together_->slot[0]);
    return;
  }
  r.current = passing();
  for (std::size_t i = 0; i < together_->size; ++i) {
    const Columns there = in_chunk(*cache_.find(r.cached, together_->slot[i]), together_->slot[i]);
    for (std::size_t j = 0; j < 12; ++j) r.current[j][i] = there[j][0];
  }
}

// Works out the world matrices of a record; those that it hangs on must be known.
void Positions::move_world(Record& r) {
  Block b(*together_);
  AffineColumns other;
  if (r.driven.empty()) {
    repeated(r.local, b.size(), b.local);
  } else {
    move_local(r, b);
  }
  if (r.has_offset) multiply(b.local, offset_of(r, b, other), b.size());
  const bool wanted = together_->numbered && (r.asked || r.dependents > 1);  // by others, at the same times
  MatrixChunk* const chunk =
      wanted && together_->in_a_row ? cache_.find_or_make(r.cached, together_->slot[0]) : nullptr;
  r.current = chunk ? in_chunk(*chunk, together_->slot[0]) : passing();
  r.stamp = stamp_;
  if (!r.parent) {
    copy(all_of(b.local), 0, b.size(), r.current);
  } else {
    const Columns parent = world_of(*r.parent, b.size(), other);
    loops().products(b.local.at[0], parent.first, parent.stride, b.size(), r.current.first, r.current.stride);
  }
  if (r.parent && drives_inheriting(r)) {
    for (std::size_t i = 0; i < b.size(); ++i)
      if (b.at(Channel::inheritsTransform)[i] == 0.0)
        for (std::size_t j = 0; j < 12; ++j) r.current[j][i] = b.local.at[j][i];
  }
  if (chunk) {
    chunk->valid |= together_->places();
  } else if (wanted && !together_->in_a_row) {
    remember_each(r);
  }
}

void Positions::remember_each(Record& r) {
  for (std::size_t i = 0; i < together_->size; ++i) {
    MatrixChunk* const chunk = cache_.find_or_make(r.cached, together_->slot[i]);
    if (chunk == nullptr) continue;
    for (std::size_t j = 0; j < 12; ++j) in_chunk(*chunk, together_->slot[i])[j][0] = r.current[j][i];
    chunk->valid |= bit_of(together_->slot[i]);
  }
}

// Room for one record's matrices at the times together, valid until the next make().
Columns Positions::passing() {
  const std::size_t size = together_->size, fit = kColumn / size;
  if (passing_used_ / fit == passing_.size()) passing_.emplace_back();
  double* const first = passing_[passing_used_ / fit].at[0] + passing_used_ % fit * 12 * size;
  ++passing_used_;
  return {first, size};
}

}  // namespace vantorelix::standalone
