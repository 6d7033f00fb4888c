#include "standalone/scene/evaluation/time_cache.h"

#include <bit>
#include <cstring>

namespace vantorelix::standalone {
namespace {

// Whole frames differ in the upper half of a double's bits only; HashIndex takes mostly the lower bits of a hash.
std::size_t hash_of(std::uint64_t bits) { return static_cast<std::size_t>(bits ^ bits >> 32); }

}  // namespace

void TimeCache::clear() {
  ++epoch_;
  used_ = 0;
  times_.clear();
  slots_ = {};
  lists_.clear();
  lists_by_hash_ = {};
  full_ = false;
}

Times& TimeCache::numbered(std::span<const double> frames) {
  const std::size_t hash = hash_of(std::bit_cast<std::uint64_t>(frames.front()) +
                                   3 * std::bit_cast<std::uint64_t>(frames.back()) + frames.size());
  const auto same = [&](std::uint32_t list) {
    return lists_[list].size == frames.size() &&
           std::memcmp(lists_[list].frame.data(), frames.data(), frames.size_bytes()) == 0;
  };
  const std::uint32_t known = lists_by_hash_.find(hash, same);
  if (known != HashIndex::kNone) return lists_[known];
  full_ |= lists_.size() + 1 >= kMaxLists;
  lists_by_hash_.insert(hash, static_cast<std::uint32_t>(lists_.size()));
  Times& list = lists_.emplace_back();
  list.size = frames.size();
  list.numbered = list.in_a_row = true;
  for (std::size_t i = 0; i < list.size; ++i) {
    list.frame[i] = frames[i];
    list.slot[i] = number(frames[i]);
    list.numbered &= list.slot[i] != kNoSlot;
    list.in_a_row &= list.slot[i] == list.slot[0] + i;
  }
  list.in_a_row &= list.slot[0] / kColumn == list.slot[list.size - 1] / kColumn;
  return list;
}

Slot TimeCache::number(double time) {
  const auto bits = std::bit_cast<std::uint64_t>(time);
  const Slot known = slots_.find(hash_of(bits), [&](Slot other) { return times_[other] == bits; });
  if (known != HashIndex::kNone) return known;
  if (times_.size() == kMaxTimes) {
    full_ = true;
    return kNoSlot;
  }
  const auto fresh = static_cast<Slot>(times_.size());
  slots_.insert(hash_of(bits), fresh);
  times_.push_back(bits);
  return fresh;
}

MatrixChunk* TimeCache::find_or_make(CachedMatrices& node, Slot slot) {
  if (node.epoch != epoch_) {
    node.epoch = epoch_;
    node.chunks.clear();
  }
  const std::size_t chunk = slot / kColumn;
  if (node.chunks.size() <= chunk) node.chunks.resize(chunk + 1);
  MatrixChunk*& place = node.chunks[chunk];
  if (place != nullptr) return place;
  if (used_ == kMaxChunks) {
    full_ = true;
    return nullptr;
  }
  if (used_ == chunks_.size()) chunks_.push_back(std::make_unique_for_overwrite<MatrixChunk>());
  place = chunks_[used_++].get();
  place->valid = 0;
  return place;
}

}  // namespace vantorelix::standalone
