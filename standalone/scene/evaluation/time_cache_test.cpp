#include "standalone/scene/evaluation/time_cache.h"

#include <gtest/gtest.h>

#include <vector>

namespace vantorelix::standalone {
namespace {

std::vector<double> frames(int first, int count, int step = 1) {
  std::vector<double> all;
  for (int i = 0; i < count; ++i) all.push_back(0.1 * (first + i * step));
  return all;
}

Slot number(TimeCache& cache, double time) { return cache.numbered({&time, 1}).slot[0]; }

TEST(TimeCache, NumbersEachTimeOnceInWhateverOrderItComes) {
  TimeCache cache;
  for (int first = 0; first < 640; first += 64) {
    const Times& times = cache.numbered(frames(first, 64));
    ASSERT_TRUE(times.numbered && times.in_a_row) << first;
    EXPECT_EQ(times.slot[0], static_cast<Slot>(first));
    EXPECT_EQ(times.places(), ~std::uint64_t{0});
  }
  const Times& backwards = cache.numbered(frames(600, 40, -7));
  EXPECT_TRUE(backwards.numbered);
  EXPECT_FALSE(backwards.in_a_row);
  for (std::size_t i = 0; i < 40; ++i) EXPECT_EQ(backwards.slot[i], 600 - 7 * i);
}

TEST(TimeCache, KnowsTheSameTimesAgain) {
  TimeCache cache;
  const Times& first = cache.numbered(frames(0, 50));
  const Times& second = cache.numbered(frames(50, 50));
  EXPECT_FALSE(second.in_a_row) << "in two chunks";
  EXPECT_EQ(&cache.numbered(frames(0, 50)), &first);
  EXPECT_EQ(&cache.numbered(frames(50, 50)), &second);
  EXPECT_NE(&cache.numbered(frames(0, 49)), &first);
  const Times& part = cache.numbered(frames(10, 5));
  EXPECT_TRUE(part.in_a_row);
  EXPECT_EQ(part.places(), std::uint64_t{31} << 10);
  EXPECT_NE(number(cache, 0.0), number(cache, -0.0));
}

TEST(TimeCache, FindsWhatWasPlacedUntilItIsCleared) {
  TimeCache cache;
  CachedMatrices node, other;
  number(cache, 1.0);
  const Slot slot = number(cache, 3.5);
  EXPECT_EQ(cache.find(node, slot), nullptr);
  MatrixChunk* const chunk = cache.find_or_make(node, slot);
  EXPECT_EQ(chunk->valid, 0u);
  chunk->valid = 2;
  EXPECT_EQ(cache.find(node, slot), chunk);
  EXPECT_EQ(cache.find_or_make(node, slot), chunk);
  EXPECT_EQ(cache.find(other, slot), nullptr);
  EXPECT_EQ(cache.find(node, slot + kColumn), nullptr);
  cache.clear();
  EXPECT_EQ(cache.find(node, slot), nullptr);
  number(cache, 3.5);
  EXPECT_EQ(cache.find_or_make(node, 0)->valid, 0u);
}

TEST(TimeCache, KeepsWithinItsMemoryAndTellsWhenItIsFull) {
  TimeCache cache;
  std::vector<CachedMatrices> nodes(5000);
  const Slot slot = number(cache, 1.0);
  std::size_t placed = 0;
  for (auto& node : nodes) {
    EXPECT_EQ(cache.is_full(), placed < static_cast<std::size_t>(&node - nodes.data()));
    placed += cache.find_or_make(node, slot) != nullptr ? 1 : 0;
  }
  EXPECT_EQ(placed, TimeCache::kMaxChunks);
  cache.clear();
  EXPECT_FALSE(cache.is_full());
  EXPECT_NE(cache.find_or_make(nodes.back(), slot), nullptr);
}

TEST(TimeCache, RunsOutOfNumbersAndTells) {
  TimeCache cache;
  for (int first = 0; first < static_cast<int>(TimeCache::kMaxTimes); first += 64)
    ASSERT_TRUE(cache.numbered(frames(first, 64)).numbered);
  EXPECT_FALSE(cache.is_full());
  EXPECT_FALSE(cache.numbered(std::vector{0.1, -1.0, 0.2}).numbered);
  EXPECT_TRUE(cache.is_full());
  EXPECT_EQ(number(cache, 0.1 * 7), 7u);
  cache.clear();
  EXPECT_FALSE(cache.is_full());
  EXPECT_EQ(number(cache, -1.0), 0u);
}

TEST(TimeCache, IsFullOfListsOfTimesToo) {
  TimeCache cache;
  for (int i = 0; !cache.is_full(); ++i) {
    ASSERT_LT(i, static_cast<int>(TimeCache::kMaxLists));
    number(cache, i);
  }
}

}  // namespace
}  // namespace vantorelix::standalone
