// World matrices remembered by node and time, within a fixed amount of memory. For the files of this folder only.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "base/matrix.h"
#include "standalone/scene/evaluation/column_loops.h"
#include "standalone/scene/names/hash_index.h"

namespace vantorelix::standalone {

// Many matrices, a column for each of the twelve numbers, row by row: loops over many times run along them.
struct AffineColumns {
  alignas(64) double at[12][kColumn];

  void set(std::size_t place, const Affine& m) {
    for (std::size_t j = 0; j < 12; ++j) at[j][place] = m.m[j / 3][j % 3];
  }
};

struct MatrixChunk {
  static constexpr std::uint32_t kSlots = kColumn;

  std::uint64_t valid = 0;  // a bit for each slot
  AffineColumns matrices;

  bool has(std::uint32_t slot) const { return (valid >> (slot % kSlots) & 1) != 0; }
  void set(std::uint32_t slot, const Affine& m) {
    valid |= std::uint64_t{1} << (slot % kSlots);
    matrices.set(slot % kSlots, m);
  }
};

// A matrix where it is: on its own, or one of many. Neither, and there is none.
class AffineView {
 public:
  AffineView() = default;
  explicit AffineView(const Affine& whole) : whole_(&whole) {}
  AffineView(const AffineColumns& columns, std::size_t place) : first_(&columns.at[0][place]) {}

  explicit operator bool() const { return whole_ != nullptr || first_ != nullptr; }
  Affine matrix() const {
    if (whole_) return *whole_;
    Affine m;
    for (std::size_t j = 0; j < 12; ++j) m.m[j / 3][j % 3] = first_[j * kColumn];
    return m;
  }
  Vector translation() const {
    if (whole_) return whole_->translation();
    return {first_[9 * kColumn], first_[10 * kColumn], first_[11 * kColumn]};
  }

  friend Vector transform_point(const Vector& p, const AffineView& t) {
    if (t.whole_) return transform_point(p, *t.whole_);
    return transform_point_by(p, [&t](std::size_t i, std::size_t j) { return t.first_[(3 * i + j) * kColumn]; });
  }
  friend Affine operator*(const Affine& a, const AffineView& b) { return b.whole_ ? a * *b.whole_ : a * b.matrix(); }

 private:
  const Affine* whole_ = nullptr;
  const double* first_ = nullptr;  // of its twelve numbers, kColumn apart
};

// One node's share.
struct CachedMatrices {
  std::uint64_t epoch = 0;           // the contents count while this is the cache's
  std::vector<MatrixChunk*> chunks;  // of the cache; null where nothing is yet
};

// Numbers the times that are asked for, and hands out the chunks. First come, first served; what finds no place is
// computed every time. When all is full and what is asked is mostly not there, everything starts anew.
class TimeCache {
 public:
  using Slot = std::uint32_t;
  static constexpr Slot kNone = 0xffffffffu;        // no number left for this time
  static constexpr std::size_t kMostChunks = 3900;  // of about 6 KB: 24 MB
  static constexpr std::size_t kMostTimes = std::size_t{1} << 16;

  // Every matrix is void; the memory stays.
  void clear();
  // Called at the start of a sample: matrices found before may be void after it.
  Slot slot(double frame) {
    const std::uint64_t bits = bits_of(frame);
    if (useless_) start_anew();
    // Objects are sampled one after another at the same times in the same two orders: for their trails and at keys.
    if (last_ < following_.size())
      for (const Slot next : following_[last_])
        if (bits_of(times_[next]) == bits) return note(last_ = next);
    return note(look_up(frame));
  }
  // The slot of a time that may be asked for; kNone when no number is left for it.
  Slot number(double time);
  // A bit for each time of the slot's chunk that was asked for about as often as the slot's since the last clear():
  // what the next node will be asked for, too. One node's own keys are not.
  std::uint64_t usual(Slot slot) const;
  // From a slot on, the times of all.
  const double* times(Slot slot) const { return times_.data() + slot; }
  // None when it is not there.
  AffineView find(const CachedMatrices& node, Slot slot) {
    const MatrixChunk* const chunk = chunk_with(node, slot);
    if (chunk == nullptr) return {};
    ++found_;
    return {chunk->matrices, slot % MatrixChunk::kSlots};
  }
  // The chunk that has the matrix, and maybe those at other times; null when it is not there.
  const MatrixChunk* chunk_with(const CachedMatrices& node, Slot slot) const {
    const std::size_t chunk = slot / MatrixChunk::kSlots;
    if (node.epoch != epoch_ || chunk >= node.chunks.size()) return nullptr;
    return node.chunks[chunk] != nullptr && node.chunks[chunk]->has(slot) ? node.chunks[chunk] : nullptr;
  }
  // Where the matrix is to be filled in; null when there is no room.
  MatrixChunk* chunk_for(CachedMatrices& node, Slot slot);

 private:
  static std::uint64_t bits_of(double time) { return std::bit_cast<std::uint64_t>(time); }
  Slot look_up(double time);
  Slot note(Slot slot) {
    if (slot != kNone) ++asked_[slot];
    return slot;
  }
  void note_missing();
  void start_anew();

  std::uint64_t epoch_ = 1;
  std::vector<std::unique_ptr<MatrixChunk>> chunks_;
  std::size_t used_ = 0;                        // of chunks_
  std::size_t missing_ = 0, found_ = 0;         // misses count from when it was full
  std::vector<double> times_;                   // by slot; told apart by their bits
  std::vector<std::array<Slot, 2>> following_;  // by slot: what was asked after it, the two latest
  std::vector<std::uint32_t> asked_;            // by slot: how often
  HashIndex slots_;                             // by the bits of the time
  Slot last_ = kNone;
  bool useless_ = false;
};

}  // namespace vantorelix::standalone
