#include "engine/sampling/catmull_rom.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "host/error.h"

namespace vantorelix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr Position A = {1.0, -2.0, 3.0};
constexpr Position B = {5.0, 6.0, -7.0};

SampleMap map_of(const std::map<std::int64_t, Position>& samples) {
  SampleMap map;
  for (const auto& [index, position] : samples) map.set(index, position);
  return map;
}

// One component of the spline, term by term as it is defined.
double plain_component(double p0, double p1, double p2, double p3, double u) {
  const double u2 = u * u;
  const double u3 = u2 * u;
  return 0.5 * (2 * p1 + (-p0 + p2) * u + (2 * p0 - 5 * p1 + 4 * p2 - p3) * u2 + (-p0 + 3 * p1 - 3 * p2 + p3) * u3);
}

Position plain_point(const Position& p0, const Position& p1, const Position& p2, const Position& p3, double u) {
  return {plain_component(p0.x, p1.x, p2.x, p3.x, u), plain_component(p0.y, p1.y, p2.y, p3.y, u),
          plain_component(p0.z, p1.z, p2.z, p3.z, u)};
}

// The fill as it is defined: one index at a time, each with a search of its own.
std::vector<Position> plain_fill(std::int64_t n_total, const std::map<std::int64_t, Position>& sampled) {
  std::vector<std::int64_t> idxs;
  std::vector<Position> pts;
  for (const auto& [index, position] : sampled) {
    idxs.push_back(index);
    pts.push_back(position);
  }
  if (idxs.size() < 2) return pts;
  const auto last = static_cast<std::int64_t>(idxs.size()) - 1;
  const auto pt = [&](std::int64_t k) { return pts[static_cast<std::size_t>(k)]; };
  const auto idx = [&](std::int64_t k) { return idxs[static_cast<std::size_t>(k)]; };
  std::vector<Position> out;
  for (std::int64_t j = 0; j < n_total; ++j) {
    const std::int64_t k = std::upper_bound(idxs.begin(), idxs.end(), j) - idxs.begin() - 1;
    if (sampled.count(j)) {
      out.push_back(sampled.at(j));
    } else if (k < 0) {
      out.push_back(pt(0));
    } else if (k >= last) {
      out.push_back(pt(last));
    } else {
      const double u = static_cast<double>(j - idx(k)) / static_cast<double>(idx(k + 1) - idx(k));
      out.push_back(plain_point(k > 0 ? pt(k - 1) : pt(k), pt(k), pt(k + 1), k + 2 <= last ? pt(k + 2) : pt(k + 1), u));
    }
  }
  return out;
}

Position random_position(std::mt19937_64& random) {
  std::uniform_real_distribution<double> between(-100.0, 100.0);
  return {between(random), between(random), between(random)};
}

TEST(CatmullPoint, PassesThroughItsInnerPoints) {
  const Position p0 = {0.1, 9.0, -4.0};
  const Position p3 = {7.7, 0.3, 2.0};
  EXPECT_EQ(_catmull_point(p0, A, B, p3, 0.0), A);
  const Position end = _catmull_point(p0, A, B, p3, 1.0);
  EXPECT_NEAR(end.x, B.x, 1e-12);
  EXPECT_NEAR(end.y, B.y, 1e-12);
  EXPECT_NEAR(end.z, B.z, 1e-12);
}

TEST(CatmullPoint, IsTheDefinitionBitForBit) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 1000; ++i) {
    const Position p[4] = {random_position(random), random_position(random), random_position(random),
                           random_position(random)};
    const double u = i / 999.0;
    ASSERT_EQ(_catmull_point(p[0], p[1], p[2], p[3], u), plain_point(p[0], p[1], p[2], p[3], u));
  }
}

TEST(SmoothFill, OfFewerThanTwoSamplesIsNotPadded) {
  EXPECT_THAT(_smooth_fill(10, SampleMap()), IsEmpty());
  EXPECT_THAT(_smooth_fill(10, map_of({{5, A}})), ElementsAre(A));
  EXPECT_THAT(_smooth_fill(0, map_of({{5, A}})), ElementsAre(A));
}

TEST(SmoothFill, BetweenTwoSamplesMeetsTheirMiddle) {
  const auto out = _smooth_fill(13, map_of({{0, A}, {10, B}}));
  ASSERT_EQ(out.size(), 13u);
  EXPECT_EQ(out[0], A);
  EXPECT_EQ(out[5], (Position{3.0, 2.0, -2.0}));
  EXPECT_EQ(out[5], _catmull_point(A, A, B, B, 0.5));
  EXPECT_EQ(out[10], B);
  EXPECT_EQ(out[11], B);
  EXPECT_EQ(out[12], B);
}

TEST(SmoothFill, HoldsTheFirstAndLastSampleBeyondThem) {
  const auto out = _smooth_fill(10, map_of({{3, A}, {7, B}}));
  ASSERT_EQ(out.size(), 10u);
  for (const std::size_t i : {0, 1, 2, 3}) EXPECT_EQ(out[i], A);
  for (const std::size_t i : {7, 8, 9}) EXPECT_EQ(out[i], B);
}

TEST(SmoothFill, NeverMovesASample) {
  const Position far = {1e6, -1e6, 0.0};
  const auto out = _smooth_fill(9, map_of({{0, A}, {2, A}, {4, far}, {6, A}, {8, A}}));
  EXPECT_EQ(out[4], far);
  for (const std::size_t i : {0, 2, 6, 8}) EXPECT_EQ(out[i], A);
}

TEST(SmoothFill, IsTheDefinitionBitForBit) {
  std::mt19937_64 random(2);
  const std::pair<std::int64_t, int> cases[] = {{2, 50}, {40, 3}, {41, 30}, {1000, 9}, {1000, 300}};
  for (const auto& [n, tries] : cases) {
    std::map<std::int64_t, Position> samples;
    std::uniform_int_distribution<std::int64_t> any(0, n - 1);
    for (int i = 0; i < tries; ++i) samples[any(random)] = random_position(random);
    for (const std::int64_t total : {n, n / 2, n + 7, std::int64_t{0}, std::int64_t{-4}})
      ASSERT_EQ(_smooth_fill(total, map_of(samples)), plain_fill(total, samples)) << total << " of " << n;
  }
}

TEST(SmoothFill, OfGapsAlikeAndNotAlikeIsTheDefinitionBitForBit) {
  std::mt19937_64 random(3);
  for (const std::int64_t gap : {1, 2, 3, 127, 128, 129, 130, 257, 300}) {
    std::map<std::int64_t, Position> samples;
    std::int64_t index = 2;
    for (const std::int64_t more : {gap, gap, gap, gap + 1, gap, 2 * gap}) {
      samples[index] = random_position(random);
      index += more;
    }
    for (const std::int64_t total : {index, index - 3 * gap / 2, index / 2, std::int64_t{1}})
      ASSERT_EQ(_smooth_fill(total, map_of(samples)), plain_fill(total, samples)) << total << " of gaps of " << gap;
  }
}

TEST(SmoothFill, RefusesAnAbsurdLengthInsteadOfClaimingItsMemory) {
  EXPECT_THROW(_smooth_fill(std::int64_t{1} << 60, map_of({{0, A}, {1, B}})), host::Error);
}

TEST(SampleMap, RemembersWhatItHoldsInIndexOrder) {
  SampleMap map(10);
  map.set(9, A);
  map.set(0, B);
  map.set(4, A);
  map.set(4, B);
  EXPECT_EQ(map.size(), 3u);
  EXPECT_THAT(map.indices(), ElementsAre(0, 4, 9));
  EXPECT_TRUE(map.contains(4));
  EXPECT_FALSE(map.contains(5));
  EXPECT_FALSE(map.contains(-1));
  EXPECT_FALSE(map.contains(10));
  EXPECT_EQ(map.at(4), B);
}

TEST(SampleMap, WithoutGapsBecomesTheTrailItself) {
  SampleMap map(3);
  map.set(0, A);
  map.set(2, A);
  map.set(1, B);
  EXPECT_THAT(map.take(), ElementsAre(A, B, A));
}

TEST(SampleMap, RefusesAnAbsurdIndexInsteadOfClaimingItsMemory) {
  SampleMap map(std::int64_t{1} << 60);
  map.set(0, A);
  EXPECT_THROW(map.set(std::int64_t{1} << 60, B), host::Error);
  EXPECT_THROW(map.set(-1, B), host::Error);
  EXPECT_EQ(map.size(), 1u);
}

}  // namespace
}  // namespace vantorelix
