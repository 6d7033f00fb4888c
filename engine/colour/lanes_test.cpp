#include "engine/colour/lanes.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

namespace vantorelix {
namespace {

constexpr std::size_t kAround = 6;  // what a full window reaches beyond the value wanted
constexpr std::uint64_t kUntouched = 0x7ff4dead0badbeef;

using Bits = std::vector<std::uint64_t>;

// Doubles by their bits: a -0 is not 0 here. Any value that is not a number counts as the same one, for which operand's
// bits it inherits is up to the compiler.
Bits bits(const std::vector<double>& values) {
  Bits all(values.size());
  std::memcpy(all.data(), values.data(), values.size() * sizeof(double));
  for (std::size_t i = 0; i < values.size(); ++i)
    if (std::isnan(values[i]) && all[i] != kUntouched) all[i] = 0x7ff8000000000000;
  return all;
}

// Ordinary numbers of all sizes, or with everything that arithmetic treats apart strewn in.
std::vector<double> inputs(std::size_t n, bool odd_ones, std::mt19937_64& random) {
  using Limits = std::numeric_limits<double>;
  const std::array<double, 13> odd = {
      0.0,    -0.0,          Limits::denorm_min(), -Limits::denorm_min(), Limits::min() / 3.0, Limits::min(),      1e-9,
      1e-300, Limits::max(), -Limits::max(),       Limits::infinity(),    -Limits::infinity(), Limits::quiet_NaN()};
  std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
  std::uniform_int_distribution<int> exponent(-12, 4), choice(0, odd_ones ? 3 : 0);
  std::uniform_int_distribution<std::size_t> which(0, odd.size() - 1);
  std::vector<double> values(n);
  for (double& v : values)
    v = choice(random) == 1 ? odd[which(random)] : mantissa(random) * std::pow(10.0, exponent(random));
  return values;
}

std::vector<double> unit_inputs(std::size_t n, std::mt19937_64& random) {
  const std::array<double, 6> stops = {0.0, 0.25, 0.5, 0.7, 0.85, 1.0};
  std::uniform_real_distribution<double> between(0.0, 1.0);
  std::vector<double> values(n);
  for (std::size_t i = 0; i < n; ++i) values[i] = i % 5 < 2 ? stops[random() % stops.size()] : between(random);
  return values;
}

// Everything that `lanes` makes of the same random inputs: outputs one after another, each with room around it.
Bits results(const Lanes& lanes, std::size_t count, bool odd_ones, std::uint64_t seed) {
  std::mt19937_64 random(seed);
  double untouched;
  std::memcpy(&untouched, &kUntouched, sizeof untouched);
  Bits all;
  const auto run = [&](std::size_t size, const auto& loop) {
    std::vector<double> out(size + 16, untouched);
    loop(out.data());
    const Bits made = bits(out);
    all.insert(all.end(), made.begin(), made.end());
  };
  const auto points = inputs(3 * (count + 1), odd_ones, random);
  run(count, [&](double* out) { lanes.lengths(points.data(), count, out); });
  const auto more = inputs(3 * (count + kAround + 1), odd_ones, random);
  for (const bool summed : {false, true}) {
    kernel::Baseline baseline;
    run(count, [&](double* out) { lanes.smoothed(more.data(), count, out, summed ? &baseline : nullptr); });
    all.push_back(bits({baseline.sum}).front());
    all.push_back(baseline.count);
  }
  const auto values = inputs(count, odd_ones, random);
  for (const double scale : {1.0, 0.3, 1e-9, 0.0, -1.0, 1e-320, 1e308, std::nan("")})
    run(count, [&](double* out) { lanes.parameters(values.data(), count, scale, out); });
  const auto t = unit_inputs(count + 1, random);
  run(3 * count, [&](double* out) { lanes.ramp(t.data(), count, out); });
  return all;
}

class WideLanes : public testing::TestWithParam<bool> {};

TEST_P(WideLanes, GiveTheBitsOfTheNarrowestOnes) {
  for (const Lanes* lanes : lane_widths().here)
    for (std::size_t count = 1; count <= kLaneBlock; ++count)
      for (std::uint64_t seed = 0; seed < 5; ++seed)
        ASSERT_EQ(results(*lanes, count, GetParam(), seed),
                  results(*lane_widths().here.front(), count, GetParam(), seed))
            << lanes->name << ", " << count << " points, seed " << seed;
}

INSTANTIATE_TEST_SUITE_P(OfNumbers, WideLanes, testing::Values(false, true),
                         [](const auto& odd) { return odd.param ? "AndWhatArithmeticTreatsApart" : "OfAllSizes"; });

TEST(Lanes, BeginWithTheOnesThatRunEverywhere) {
  ASSERT_FALSE(lane_widths().here.empty());
  EXPECT_STREQ(lane_widths().here.front()->name, "base");
}

TEST(Lanes, OfOtherProcessorsAreNotTriedHere) {
  if (lane_widths().elsewhere.empty()) return;
  GTEST_SKIP() << "not run by this processor: " << testing::PrintToString(lane_widths().elsewhere);
}

}  // namespace
}  // namespace vantorelix
