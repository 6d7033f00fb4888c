#include "standalone/scene/evaluation/time_cache.h"

#include <algorithm>

namespace vantorelix::standalone {
namespace {

// The upper half holds what tells frames apart; the index looks at the lower bits most.
std::size_t hash_of(std::uint64_t bits) { return static_cast<std::size_t>(bits ^ bits >> 32); }

}  // namespace

void TimeCache::clear() {
  ++epoch_;
  used_ = missing_ = found_ = 0;
  std::fill(asked_.begin(), asked_.end(), 0);
}

TimeCache::Slot TimeCache::number(double time) {
  const std::uint64_t bits = bits_of(time);
  const Slot known = slots_.find(hash_of(bits), [&](Slot other) { return bits_of(times_[other]) == bits; });
  if (known != HashIndex::kNone) return known;
  if (times_.size() == kMostTimes) return kNone;
  const auto fresh = static_cast<Slot>(times_.size());
  slots_.insert(hash_of(bits), fresh);
  times_.push_back(time);
  following_.push_back({});
  asked_.push_back(0);
  return fresh;
}

TimeCache::Slot TimeCache::look_up(double time) {
  const Slot slot = number(time);
  if (slot == kNone) {
    note_missing();
    return kNone;
  }
  if (last_ < following_.size()) following_[last_] = {slot, following_[last_][0]};
  return last_ = slot;
}

std::uint64_t TimeCache::usual(Slot slot) const {
  constexpr std::uint32_t kAbout = 8;  // a frame on keys is asked for several times a node
  const std::size_t first = slot - slot % MatrixChunk::kSlots;
  const std::size_t count = std::min<std::size_t>(MatrixChunk::kSlots, asked_.size() - first);
  const std::uint32_t least = asked_[slot] / kAbout;
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < count; ++i) bits |= std::uint64_t{asked_[first + i] > least} << i;
  return bits | std::uint64_t{1} << slot % MatrixChunk::kSlots;
}

MatrixChunk* TimeCache::chunk_for(CachedMatrices& node, Slot slot) {
  if (node.epoch != epoch_) {
    node.epoch = epoch_;
    node.chunks.clear();
  }
  const std::size_t chunk = slot / MatrixChunk::kSlots;
  if (node.chunks.size() <= chunk) node.chunks.resize(chunk + 1);
  MatrixChunk*& place = node.chunks[chunk];
  if (place == nullptr) {
    if (used_ == kMostChunks) {
      note_missing();
      return nullptr;
    }
    if (used_ == chunks_.size()) chunks_.push_back(std::make_unique<MatrixChunk>());
    place = chunks_[used_++].get();
    place->valid = 0;
  }
  return place;
}

void TimeCache::note_missing() {
  constexpr std::size_t kPatience = 1 << 16;
  if (++missing_ == 1) found_ = 0;
  useless_ = missing_ >= kPatience && missing_ >= 4 * found_;
}

void TimeCache::start_anew() {
  clear();
  times_.clear();
  following_.clear();
  asked_.clear();
  slots_ = {};
  last_ = kNone;
  useless_ = false;
}

}  // namespace vantorelix::standalone
