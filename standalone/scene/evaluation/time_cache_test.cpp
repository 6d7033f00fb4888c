#include "standalone/scene/evaluation/time_cache.h"

#include <gtest/gtest.h>

namespace vantorelix::standalone {
namespace {

TEST(TimeCache, NumbersEachTimeOnceInWhateverOrderItIsAsked) {
  TimeCache cache;
  std::vector<TimeCache::Slot> slots;
  for (int i = 0; i < 1000; ++i) slots.push_back(cache.slot(i * 0.1));
  for (int i = 999; i >= 0; --i) EXPECT_EQ(cache.slot(i * 0.1), slots[static_cast<std::size_t>(i)]);
  for (int i = 0; i < 1000; ++i)
    EXPECT_EQ(cache.slot((i * 7 % 1000) * 0.1), slots[static_cast<std::size_t>(i * 7 % 1000)]);
}

TEST(TimeCache, NumbersATimeBeforeItIsAskedFor) {
  TimeCache cache;
  const TimeCache::Slot first = cache.slot(1.0), expected = cache.number(2.5);
  EXPECT_EQ(cache.number(1.0), first);
  EXPECT_EQ(expected, first + 1);
  EXPECT_EQ(cache.usual(first), std::uint64_t{1} << first) << "nobody asked for the other";
  EXPECT_EQ(cache.slot(2.5), expected);
}

TEST(TimeCache, FindsWhatWasPlacedUntilItIsCleared) {
  TimeCache cache;
  CachedMatrices node, other;
  const TimeCache::Slot slot = cache.slot(3.5);
  EXPECT_FALSE(cache.find(node, slot));
  Affine placed;
  for (std::size_t j = 0; j < 12; ++j) placed.m[j / 3][j % 3] = 7.0 + static_cast<double>(j);
  cache.chunk_for(node, slot)->set(slot, placed);
  ASSERT_TRUE(cache.find(node, slot));
  EXPECT_EQ(cache.find(node, slot).matrix(), placed);
  EXPECT_FALSE(cache.find(other, slot));
  EXPECT_FALSE(cache.find(node, cache.slot(4.5)));
  cache.clear();
  EXPECT_FALSE(cache.find(node, slot));
}

TEST(TimeCache, UsualAreTheTimesOfAChunkThatManyNodesAreAskedFor) {
  TimeCache cache;
  const auto bit = [](TimeCache::Slot slot) { return std::uint64_t{1} << slot % MatrixChunk::kSlots; };
  for (int frame = 0; frame < 100; ++frame) cache.slot(frame);
  const TimeCache::Slot first = cache.slot(0), last = cache.slot(63), next_chunk = cache.slot(64);
  EXPECT_EQ(cache.usual(first), ~std::uint64_t{0});
  EXPECT_EQ(cache.usual(next_chunk), (std::uint64_t{1} << 36) - 1);
  for (int node = 0; node < 20; ++node)
    for (int frame = 0; frame < 63; ++frame) cache.slot(frame);
  EXPECT_EQ(cache.usual(first), ~bit(last)) << "one node's own";
  EXPECT_EQ(cache.usual(last), ~std::uint64_t{0});
  cache.clear();
  EXPECT_EQ(cache.usual(cache.slot(5)), bit(cache.slot(5)));
}

TEST(TimeCache, KeepsWithinItsMemory) {
  TimeCache cache;
  std::vector<CachedMatrices> nodes(5000);
  std::size_t placed = 0;
  for (auto& node : nodes) placed += cache.chunk_for(node, cache.slot(1.0)) != nullptr ? 1 : 0;
  EXPECT_EQ(placed, TimeCache::kMostChunks);
}

TEST(TimeCache, RunsOutOfNumbersAndStartsAnewWhenItIsOfNoUse) {
  TimeCache cache;
  std::size_t without = 0, with_after = 0;
  for (int i = 0; i < 400000; ++i) {
    const bool none = cache.slot(i) == TimeCache::kNone;
    without += none ? 1 : 0;
    with_after += !none && without > 0 ? 1 : 0;
  }
  EXPECT_GT(without, 0u);
  EXPECT_GT(with_after, 0u);
}

}  // namespace
}  // namespace vantorelix::standalone
