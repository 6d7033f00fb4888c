// World matrices remembered by node and time, within a fixed amount of memory. For the files of this folder only.
//
// What each part gains, as the instructions of a build without it over those of one with it (valgrind --tool=callgrind
// --toggle-collect='*make_trails*' build/bin/vantorelix_bench --benchmark_filter='tree|clip_all_joints'):
//   the matrices themselves                       3.2 and 3.5, and 2.2 of `vantorelix trails clip.bvh --quiet`
//   lists of times, found whole                   1.20 and 1.20
//   times in a row, whose matrices stay in place  1.20 and 1.18
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <span>
#include <vector>

#include "standalone/scene/curves/anim_curve.h"
#include "standalone/scene/evaluation/column_loops.h"
#include "standalone/scene/names/hash_index.h"

namespace vantorelix::standalone {

// Matrices at kColumn times: twelve columns, one for each number of a matrix, row by row.
struct AffineColumns {
  alignas(64) double at[12][kColumn];
};

// A view of twelve columns that lie `stride` doubles apart, in memory of somebody else.
struct Columns {
  double* first = nullptr;
  std::size_t stride = 0;

  double* operator[](std::size_t j) const { return first + j * stride; }
};

struct MatrixChunk {
  std::uint64_t valid = 0;  // a bit for each place
  AffineColumns matrices;
};

// The matrices of one node that the cache keeps.
struct CachedMatrices {
  std::uint64_t epoch = 0;           // where it differs from the cache's, the chunks are void
  std::vector<MatrixChunk*> chunks;  // of the cache; null where nothing is yet
};

// The number that the cache gives a time. Every node has the matrix of that time in chunk slot / kColumn, at place
// slot % kColumn.
using Slot = std::uint32_t;
inline constexpr Slot kNoSlot = 0xffffffffu;

inline std::uint64_t bit_of(Slot slot) { return std::uint64_t{1} << slot % kColumn; }

// A list of times, kColumn at most. `slot` is valid where `numbered`.
struct Times {
  std::span<const double> frames() const { return {frame.data(), size}; }
  // The bits of their places in the chunk, for times in a row.
  std::uint64_t places() const { return 2 * bit_of(slot[size - 1]) - bit_of(slot[0]); }

  std::size_t size = 0;
  std::array<double, kColumn> frame;
  std::array<Slot, kColumn> slot;
  bool numbered = false;  // all of them have a slot
  bool in_a_row = false;  // and the slots are consecutive and in one chunk, so that columns can be used where they lie
  KeyPlaces on_curve;     // where they are on the curve that was evaluated at them last
};

class TimeCache {
 public:
  static constexpr std::size_t kMaxChunks = 3900;  // of about 6 KB: 24 MB
  static constexpr std::size_t kMaxTimes = std::size_t{1} << 16;
  static constexpr std::size_t kMaxLists = 2048;  // of about 2 KB

  // Forgets every time and every matrix; the memory stays.
  void clear();
  // Some time or matrix found no room since the last clear().
  bool is_full() const { return full_; }
  // The same times, numbered: those that are new follow the latest. Stays valid until clear().
  Times& numbered(std::span<const double> frames);
  // The chunk of a slot, null where the node has none; the bits in `valid` tell whether the slot's matrix is there.
  MatrixChunk* find(const CachedMatrices& node, Slot slot) const {
    const std::size_t chunk = slot / kColumn;
    return node.epoch == epoch_ && chunk < node.chunks.size() ? node.chunks[chunk] : nullptr;
  }
  // The same, made where there is none; null when there is no room.
  MatrixChunk* find_or_make(CachedMatrices& node, Slot slot);

 private:
  Slot number(double time);

  std::uint64_t epoch_ = 1;
  std::vector<std::unique_ptr<MatrixChunk>> chunks_;
  std::size_t used_ = 0;              // of chunks_
  std::vector<std::uint64_t> times_;  // by slot: their bits, which tell them apart
  HashIndex slots_;                   // by those bits
  // The lists that numbered() has returned. Nodes are asked one after another at the same times, so that a list of 64
  // times is found by one look-up instead of 64.
  std::deque<Times> lists_;
  HashIndex lists_by_hash_;
  bool full_ = false;
};

}  // namespace vantorelix::standalone
