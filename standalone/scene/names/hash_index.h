// A hash table of numbers, each of which stands for something that the caller keeps, as a name. For the files of
// standalone/scene only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

namespace vantorelix::standalone {

// Of a name, eight bytes at a time. Its upper bits depend on every byte.
inline std::size_t hash_of(std::string_view text) {
  constexpr std::uint64_t kOdd = 0x9e3779b97f4a7c15u;
  const auto bytes = [](const char* at, auto word) -> std::uint64_t {
    std::memcpy(&word, at, sizeof word);
    return word;
  };
  const char* at = text.data();
  const char* const end = at + text.size();
  std::uint64_t hash = text.size() * kOdd;
  const auto mix = [&hash](std::uint64_t word) {
    hash = (hash ^ word) * kOdd;
    hash ^= hash >> 32;
  };
  // The last word may overlap the one before.
  if (text.size() >= 8) {
    for (; end - at > 8; at += 8) mix(bytes(at, std::uint64_t{}));
    mix(bytes(end - 8, std::uint64_t{}));
  } else if (text.size() >= 4) {
    mix(bytes(at, std::uint32_t{}) << 32 | bytes(end - 4, std::uint32_t{}));
  } else if (!text.empty()) {
    mix(bytes(at, std::uint8_t{}) << 16 | bytes(at + text.size() / 2, std::uint8_t{}) << 8 |
        bytes(end - 1, std::uint8_t{}));
  }
  return static_cast<std::size_t>(hash);
}

// The caller gives the hash of what a number stands for, and same(number) tells whether that is what is looked for.
// Each number may be in the table once.
//
// With std::unordered_map and std::hash in its place, trails of a scene of 10,000 nodes, a tenth of them with two
// curves, take 1.2 times the processor's time, and `info`, which reads it alone, 1.05 times; shown by either program in
// turns: /usr/bin/time -v build/bin/vantorelix trails SCENE --out trails.csv
class HashIndex {
 public:
  static constexpr std::uint32_t kNone = 0xffffffffu;

  template <class Same>
  std::uint32_t find(std::size_t hash, Same same) const {
    if (slots_.empty()) return kNone;
    const std::uint32_t short_hash = shortened(hash);
    for (std::size_t at = home(short_hash);; at = next(at)) {
      const Slot& slot = slots_[at];
      if (slot.number == kNone || (slot.hash == short_hash && same(slot.number))) return slot.number;
    }
  }

  void insert(std::size_t hash, std::uint32_t number) {
    if (2 * (used_ + 1) > slots_.size()) grow();
    put({number, shortened(hash)});
    ++used_;
  }

  // The number must be there.
  void erase(std::size_t hash, std::uint32_t number) {
    std::size_t gap = home(shortened(hash));
    while (slots_[gap].number != number) gap = next(gap);
    // What follows moves up unless that took it past its home.
    for (std::size_t at = next(gap); slots_[at].number != kNone; at = next(at)) {
      if (distance(home(slots_[at].hash), at) < distance(gap, at)) continue;
      slots_[gap] = slots_[at];
      gap = at;
    }
    slots_[gap] = Slot{};
    --used_;
  }

 private:
  struct Slot {
    std::uint32_t number = kNone;
    std::uint32_t hash = 0;
  };

  // Spread over all bits: the table is a power of two long, and some hashes are the numbers themselves.
  static std::uint32_t shortened(std::size_t hash) {
    return static_cast<std::uint32_t>((std::uint64_t{hash} * 0x9e3779b97f4a7c15u) >> 32);
  }
  std::size_t home(std::uint32_t hash) const { return hash & (slots_.size() - 1); }
  std::size_t next(std::size_t at) const { return (at + 1) & (slots_.size() - 1); }
  std::size_t distance(std::size_t from, std::size_t to) const { return (to - from) & (slots_.size() - 1); }

  void put(const Slot& slot) {
    std::size_t at = home(slot.hash);
    while (slots_[at].number != kNone) at = next(at);
    slots_[at] = slot;
  }
  void grow() {
    std::vector<Slot> old(slots_.empty() ? 16 : 2 * slots_.size());
    old.swap(slots_);
    for (const Slot& slot : old)
      if (slot.number != kNone) put(slot);
  }

  std::vector<Slot> slots_;  // a power of two, at most half full
  std::size_t used_ = 0;
};

}  // namespace vantorelix::standalone
