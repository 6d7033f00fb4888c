#include "standalone/scene/names/hash_index.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <unordered_map>

namespace vantorelix::standalone {
namespace {

// Numbers that stand for themselves, under a hash that many share.
struct Numbers {
  HashIndex index;
  std::size_t hashes;

  std::size_t hash(std::uint32_t number) const { return number % hashes; }
  bool has(std::uint32_t number) const {
    const std::uint32_t found = index.find(hash(number), [number](std::uint32_t other) { return other == number; });
    return found == number;
  }
};

TEST(HashIndex, HoldsWhatWasPutInAndNotTakenOut) {
  for (const std::size_t hashes : {1, 7, 1000000}) {
    Numbers numbers{{}, hashes};
    std::mt19937 random(5);
    std::unordered_map<std::uint32_t, bool> there;
    EXPECT_FALSE(numbers.has(3));
    for (int i = 0; i < 3000; ++i) {
      const auto number = static_cast<std::uint32_t>(random() % 300);
      bool& is_there = there[number];
      if (is_there) {
        numbers.index.erase(numbers.hash(number), number);
      } else {
        numbers.index.insert(numbers.hash(number), number);
      }
      is_there = !is_there;
      if (i % 50 != 0) continue;
      for (const auto& [each, expected] : there) ASSERT_EQ(numbers.has(each), expected) << each;
    }
  }
}

TEST(HashOf, DiffersWithEveryCharacterAndWithTheLength) {
  std::set<std::size_t> hashes;
  std::size_t names = 0;
  for (std::size_t length = 0; length < 30; ++length) {
    const std::string name(length, 'a');
    hashes.insert(hash_of(name)), ++names;
    for (std::size_t i = 0; i < length; ++i)
      for (const char other : {'b', 'A', '\0'}) {
        std::string changed = name;
        changed[i] = other;
        hashes.insert(hash_of(changed)), ++names;
      }
  }
  EXPECT_EQ(hashes.size(), names);
}

}  // namespace
}  // namespace vantorelix::standalone
