// World matrices remembered by node and time, within a fixed amount of memory.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "standalone/scene/matrix.h"

namespace vantorelix::standalone {

struct MatrixChunk {
  static constexpr std::uint32_t kSlots = 64;

  std::uint64_t valid = 0;  // a bit for each slot
  std::array<Affine, kSlots> matrices;

  bool has(std::uint32_t slot) const { return (valid >> (slot % kSlots) & 1) != 0; }
  const Affine& at(std::uint32_t slot) const { return matrices[slot % kSlots]; }
  // Valid from now on: to be written at once.
  Affine& fill(std::uint32_t slot) {
    valid |= std::uint64_t{1} << (slot % kSlots);
    return matrices[slot % kSlots];
  }
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
    const std::uint64_t bits = std::bit_cast<std::uint64_t>(frame);
    if (useless_) start_anew();
    // Objects are sampled one after another at the same times in the same two orders: for their trails and at keys.
    if (last_ < following_.size())
      for (const Slot next : following_[last_])
        if (times_[next] == bits) return last_ = next;
    return look_up(bits);
  }
  double time(Slot slot) const { return std::bit_cast<double>(times_[slot]); }
  // Null when it is not there.
  const Affine* find(const CachedMatrices& node, Slot slot) {
    const MatrixChunk* const chunk = chunk_with(node, slot);
    if (chunk == nullptr) return nullptr;
    ++found_;
    return &chunk->at(slot);
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
  Slot look_up(std::uint64_t bits);
  void grow();
  void note_missing();
  void start_anew();

  std::uint64_t epoch_ = 1;
  std::vector<std::unique_ptr<MatrixChunk>> chunks_;
  std::size_t used_ = 0;                        // of chunks_
  std::size_t missing_ = 0, found_ = 0;         // misses count from when it was full
  std::vector<std::uint64_t> times_;            // by slot: the bits of the time
  std::vector<std::array<Slot, 2>> following_;  // by slot: what was asked after it, the two latest
  std::vector<Slot> table_;                     // open addressing over the bits; kNone where empty; a power of two
  Slot last_ = kNone;
  bool useless_ = false;
};

}  // namespace vantorelix::standalone
