#include "engine/sampling/spacing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "host/error.h"

namespace vantorelix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::int64_t> order(std::int64_t n) {
  std::vector<std::int64_t> indices;
  _bisect_indices sequence(n);
  while (const auto index = sequence.next()) indices.push_back(*index);
  return indices;
}

std::vector<double> random_values(std::size_t n) {
  std::mt19937_64 random(n);
  std::uniform_real_distribution<double> between(0.0, 3.0);
  std::vector<double> values(n);
  for (double& v : values) v = between(random);
  return values;
}

// The definition, word for word.
std::vector<double> plain_smooth(const std::vector<double>& values, std::int64_t window) {
  const auto n = static_cast<std::int64_t>(values.size());
  std::vector<double> out;
  for (std::int64_t i = 0; i < n; ++i) {
    const std::int64_t lo = std::max<std::int64_t>(0, i - window);
    const std::int64_t hi = std::min(n, i + window + 1);
    double sum = 0.0;
    for (std::int64_t k = lo; k < hi; ++k) sum += values[static_cast<std::size_t>(k)];
    out.push_back(sum / static_cast<double>(hi - lo));
  }
  return out;
}

TEST(Smooth, AveragesOverTheNeighboursThereAre) {
  const auto out = _smooth({1, 2, 3, 4, 5, 6, 7, 8}, 3);
  ASSERT_EQ(out.size(), 8u);
  EXPECT_EQ(out[0], 2.5);
  EXPECT_EQ(out[3], 4.0);
  EXPECT_EQ(out[7], 6.5);
}

TEST(Smooth, ReachesThreeToEachSideUnlessToldOtherwise) {
  const std::vector<double> values = random_values(20);
  EXPECT_EQ(_smooth(values), _smooth(values, 3));
  EXPECT_NE(_smooth(values), _smooth(values, 2));
}

TEST(Smooth, CopiesWhatIsEmptyOrHasNoWindow) {
  EXPECT_THAT(_smooth({}, 3), IsEmpty());
  EXPECT_THAT(_smooth({4, 8}, 0), ElementsAre(4, 8));
  EXPECT_THAT(_smooth({4, 8}, -2), ElementsAre(4, 8));
}

TEST(Smooth, IsTheDefinitionBitForBitAtEveryLengthAndWindow) {
  for (std::size_t n = 1; n <= 24; ++n)
    for (std::int64_t window = 1; window <= 10; ++window) {
      const auto values = random_values(n);
      ASSERT_EQ(_smooth(values, window), plain_smooth(values, window)) << n << " values, window " << window;
    }
}

TEST(Smooth, TakesAWindowOfAnySize) {
  const std::vector<double> values = {1.0, 2.0, 6.0};
  EXPECT_THAT(_smooth(values, std::numeric_limits<std::int64_t>::max()), ElementsAre(3.0, 3.0, 3.0));
}

TEST(Spacing, OfNothingKeepsTheReferenceOrMakesAnEmptyScale) {
  const auto fresh = _t_from_spacing({}, {});
  EXPECT_THAT(fresh.first, IsEmpty());
  EXPECT_EQ(fresh.second, host::Value::list({0.0}));
  const host::Value given = host::Value::list({2.0});
  EXPECT_EQ(_t_from_spacing({}, given).second.as_list()->get(), given.as_list()->get());
  EXPECT_EQ(_t_from_spacing({}, host::Value::list({})).second, host::Value::list({0.0}));
}

TEST(Spacing, OfHoldsAloneHasNoScale) {
  const auto [t, ref] = _t_from_spacing({0, 0, 0}, {});
  EXPECT_THAT(t, ElementsAre(0.0, 0.0, 0.0));
  EXPECT_EQ(ref, host::Value::list({0.0}));
}

TEST(Spacing, LeavesHoldsOutOfTheBaseline) {
  const auto [t, ref] = _t_from_spacing({1, 1, 0, 2}, {});
  EXPECT_EQ(ref, host::Value::list({4.0 / 3.0}));
  const double scale = 4.0 / 3.0 * 2.5;
  EXPECT_THAT(t, ElementsAre(1.0 / scale, 1.0 / scale, 0.0, 2.0 / scale));
  EXPECT_NEAR(t[0], 0.3, 1e-15);
  EXPECT_NEAR(t[3], 0.6, 1e-15);
}

TEST(Spacing, ALengthOfABillionthIsStillAHold) {
  EXPECT_EQ(_t_from_spacing({1e-9, 3.0}).second, host::Value::list({3.0}));
  EXPECT_EQ(_t_from_spacing({2e-9, 4e-9}).second, host::Value::list({(2e-9 + 4e-9) / 2.0}));
}

TEST(Spacing, MeasuresAgainstAGivenReferenceWithoutChangingIt) {
  const host::Value ref = host::Value::list({1.0});
  const auto [t, same] = _t_from_spacing({10, 1, -1}, ref);
  EXPECT_THAT(t, ElementsAre(1.0, 0.4, 0.0));
  EXPECT_EQ(same.as_list()->get(), ref.as_list()->get());
  EXPECT_EQ(ref, host::Value::list({1.0}));
}

TEST(Spacing, AScaleOfABillionthOrLessGivesZeros) {
  EXPECT_THAT(_t_from_spacing({1, 2}, host::Value::list({4e-10})).first, ElementsAre(0.0, 0.0));
  EXPECT_THAT(_t_from_spacing({1, 2}, host::Value::list({-1.0})).first, ElementsAre(0.0, 0.0));
  EXPECT_THAT(_t_from_spacing({1, 2}, host::Value::list({5e-10})).first, ElementsAre(1.0, 1.0));
}

TEST(Spacing, AnEmptyReferenceCountsAsZeroAndIsHandedBack) {
  const host::Value empty = host::Value::list({});
  const auto [t, ref] = _t_from_spacing({1, 2}, empty);
  EXPECT_THAT(t, ElementsAre(0.0, 0.0));
  EXPECT_EQ(ref.as_list()->get(), empty.as_list()->get());
}

TEST(Spacing, WhatIsNoNumberEndsAtTheTopOfTheRamp) {
  const double nan = std::nan("");
  EXPECT_THAT(_t_from_spacing({nan, 1.0}, host::Value::list({1.0})).first, ElementsAre(1.0, 0.4));
}

TEST(Spacing, AReferenceThatHoldsNoNumberFails) {
  const std::pair<host::Value, std::string> cases[] = {
      {host::Value::list({"a"}), "can't multiply sequence by non-int of type 'float'"},
      {host::Value::list({host::Value()}), "unsupported operand type(s) for *: 'NoneType' and 'float'"},
      {5, "'int' object is not subscriptable"},
  };
  for (const auto& [ref, text] : cases) {
    try {
      _t_from_spacing({1.0}, ref);
      ADD_FAILURE() << ref.repr();
    } catch (const host::Error& e) {
      EXPECT_EQ(e.kind(), host::ErrorKind::type);
      EXPECT_EQ(e.what(), text);
    }
  }
  EXPECT_EQ(_spacing_baseline({}), 0.0);
  EXPECT_EQ(_spacing_baseline(host::Value::list({2})), 2.0);
}

TEST(BisectIndices, GiveTheEndsAndThenTheMiddles) {
  EXPECT_THAT(order(-3), IsEmpty());
  EXPECT_THAT(order(0), IsEmpty());
  EXPECT_THAT(order(1), ElementsAre(0));
  EXPECT_THAT(order(2), ElementsAre(0, 1));
  EXPECT_THAT(order(3), ElementsAre(0, 2, 1));
  EXPECT_THAT(order(5), ElementsAre(0, 4, 2, 1, 3));
  EXPECT_THAT(order(9), ElementsAre(0, 8, 4, 2, 6, 1, 3, 5, 7));
}

TEST(BisectIndices, GiveEveryIndexOnce) {
  for (const std::int64_t n : {4, 6, 7, 10, 100, 1000, 1023, 1024, 1025}) {
    auto indices = order(n);
    std::sort(indices.begin(), indices.end());
    ASSERT_EQ(static_cast<std::int64_t>(indices.size()), n);
    for (std::int64_t i = 0; i < n; ++i) ASSERT_EQ(indices[static_cast<std::size_t>(i)], i);
  }
}

// The definition, word for word, for n of at least 2.
std::vector<std::int64_t> plain_order(std::int64_t n) {
  std::vector<std::int64_t> indices = {0, n - 1};
  std::vector<std::pair<std::int64_t, std::int64_t>> spans = {{0, n - 1}};
  for (std::size_t qi = 0; qi < spans.size(); ++qi) {
    const auto [a, b] = spans[qi];
    const std::int64_t m = (a + b) / 2;
    if (m == a || m == b) continue;
    indices.push_back(m);
    spans.emplace_back(a, m);
    spans.emplace_back(m, b);
  }
  return indices;
}

TEST(BisectIndices, FollowTheSpanListWordForWord) {
  for (std::int64_t n = 2; n < 600; ++n) ASSERT_EQ(order(n), plain_order(n)) << n;
  for (const std::int64_t n : {1000, 1023, 1024, 1025, 99'991, 131'073}) ASSERT_EQ(order(n), plain_order(n)) << n;
}

TEST(BisectIndices, AreMadeOnlyAsTheyArePulled) {
  _bisect_indices sequence(std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(sequence.next(), 0);
  EXPECT_EQ(sequence.next(), std::numeric_limits<std::int64_t>::max() - 1);
  EXPECT_EQ(sequence.next(), (std::numeric_limits<std::int64_t>::max() - 1) / 2);
}

TEST(BisectIndices, StayAtTheirEnd) {
  _bisect_indices sequence(1);
  EXPECT_EQ(sequence.next(), 0);
  EXPECT_EQ(sequence.next(), std::nullopt);
  EXPECT_EQ(sequence.next(), std::nullopt);
}

}  // namespace
}  // namespace vantorelix
