#include "engine/colour/colour.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <random>

#include "engine/sampling/spacing.h"
#include "engine/state/constants.h"
#include "host/error.h"
#include "tests/support/engine_test.h"

// A wrong number of arguments cannot be tried here: it does not compile.

namespace vantorelix {
namespace {

using support::EngineTest;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr Colour kStandard = {0.15, 0.75, 0.65};
constexpr Colour kPast = {1.0, 0.75, 0.0};
constexpr Colour kFuture = {0.0, 0.65, 0.65};
constexpr Colour kGreen = {0.15, 0.85, 0.25};
constexpr Colour kWhite = {1.0, 1.0, 1.0};

// The ramp as it is defined: the first stop at or above t decides.
Colour plain_ramp(double t) {
  t = std::max(0.0, std::min(1.0, t));
  for (std::size_t i = 0; i + 1 < _RAMP_STOPS.size(); ++i) {
    const auto& [t0, c0] = _RAMP_STOPS[i];
    const auto& [t1, c1] = _RAMP_STOPS[i + 1];
    if (t > t1) continue;
    const double u = t1 > t0 ? (t - t0) / (t1 - t0) : 0.0;
    return {c0.x + (c1.x - c0.x) * u, c0.y + (c1.y - c0.y) * u, c0.z + (c1.z - c0.z) * u};
  }
  return _RAMP_STOPS.back().colour;
}

// The spacing mode as the composition of the published functions.
std::pair<std::vector<Colour>, host::Value> plain_colours(const std::vector<Position>& pos, const host::Value& ref) {
  std::vector<double> dists;
  for (std::size_t i = 0; i + 1 < pos.size(); ++i) {
    const double dx = pos[i + 1].x - pos[i].x;
    const double dy = pos[i + 1].y - pos[i].y;
    const double dz = pos[i + 1].z - pos[i].z;
    dists.push_back(std::sqrt(dx * dx + dy * dy + dz * dz));
  }
  const auto [t, kept] = _t_from_spacing(_smooth(dists, 3), ref);
  std::vector<Colour> colours;
  for (std::size_t i = 0; i < pos.size(); ++i) {
    if (i == 0) {
      colours.push_back(_color_ramp(t.front()));
    } else if (i == pos.size() - 1) {
      colours.push_back(_color_ramp(t.back()));
    } else {
      colours.push_back(_color_ramp(0.5 * (t[i - 1] + t[i])));
    }
  }
  return {colours, kept};
}

// A walk with holds, crawls and leaps, so that every part of the ramp occurs.
std::vector<Position> walk(std::size_t n) {
  std::mt19937_64 random(n);
  std::uniform_real_distribution<double> between(-1.0, 1.0);
  std::vector<Position> positions(n);
  for (std::size_t i = 1; i < n; ++i) {
    const double speed = i % 97 < 20 ? 0.0 : i % 53 < 10 ? 8.0 : i % 31 < 8 ? 1e-3 : 1.0;
    positions[i] = {positions[i - 1].x + speed * between(random), positions[i - 1].y + speed * between(random),
                    positions[i - 1].z + speed * between(random)};
  }
  return positions;
}

TEST(ColorRamp, MeetsItsStopsAndBlendsBetweenThem) {
  EXPECT_EQ(_color_ramp(0.0), (Colour{0.0, 0.0, 1.0}));
  EXPECT_EQ(_color_ramp(0.25), (Colour{0.0, 1.0, 1.0}));
  EXPECT_EQ(_color_ramp(0.5), (Colour{0.0, 1.0, 0.0}));
  EXPECT_EQ(_color_ramp(0.7), (Colour{1.0, 1.0, 0.0}));
  EXPECT_EQ(_color_ramp(0.85), (Colour{1.0, 0.5, 0.0}));
  EXPECT_EQ(_color_ramp(1.0), (Colour{1.0, 0.0, 0.0}));
  const Colour yellowish = _color_ramp(0.6);
  EXPECT_NEAR(yellowish.x, 0.5, 1e-15);
  EXPECT_EQ(yellowish.y, 1.0);
  EXPECT_EQ(yellowish.z, 0.0);
  const Colour reddish = _color_ramp(0.925);
  EXPECT_EQ(reddish.x, 1.0);
  EXPECT_NEAR(reddish.y, 0.25, 1e-15);
}

TEST(ColorRamp, ClampsWhatLiesOutside) {
  EXPECT_EQ(_color_ramp(-1.0), (Colour{0.0, 0.0, 1.0}));
  EXPECT_EQ(_color_ramp(2.0), (Colour{1.0, 0.0, 0.0}));
  EXPECT_EQ(_color_ramp(-std::numeric_limits<double>::infinity()), (Colour{0.0, 0.0, 1.0}));
  EXPECT_EQ(_color_ramp(std::nan("")), (Colour{1.0, 0.0, 0.0}));  // min(1.0, nan) is 1.0
}

TEST(ColorRamp, IsTheDefinitionBitForBit) {
  for (int i = 0; i <= 100000; ++i) ASSERT_EQ(_color_ramp(i / 100000.0), plain_ramp(i / 100000.0)) << i;
  for (const auto& [stop, colour] : _RAMP_STOPS)
    for (const double t : {std::nextafter(stop, -1.0), stop, std::nextafter(stop, 2.0)})
      EXPECT_EQ(_color_ramp(t), plain_ramp(t)) << t;
}

TEST(SpacingColours, OfEvenSteps) {
  const auto [colours, ref] = _colors_from_positions({{0, 0, 0}, {2, 0, 0}, {2, 2, 0}});
  EXPECT_EQ(ref, host::Value::list({2.0}));
  EXPECT_THAT(colours, ElementsAre(_color_ramp(0.4), _color_ramp(0.4), _color_ramp(0.4)));
  EXPECT_NEAR(colours[0].z, 0.4, 1e-15);
  EXPECT_EQ(colours[0].y, 1.0);
}

TEST(SpacingColours, KeepTheScaleOfTheFirstTime) {
  const auto slow = _colors_from_positions({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}});
  const auto fast = _colors_from_positions({{0, 0, 0}, {5, 0, 0}, {10, 0, 0}}, slow.second);
  EXPECT_THAT(fast.first, Each(Colour{1.0, 0.0, 0.0}));
  EXPECT_EQ(fast.second.as_list()->get(), slow.second.as_list()->get());
  EXPECT_EQ(fast.second, host::Value::list({1.0}));
}

TEST(SpacingColours, OfAHoldAreBlue) {
  const auto [colours, ref] = _colors_from_positions(std::vector<Position>(5));
  EXPECT_THAT(colours, Each(Colour{0.0, 0.0, 1.0}));
  EXPECT_EQ(colours.size(), 5u);
  EXPECT_EQ(ref, host::Value::list({0.0}));
}

TEST(SpacingColours, OfNoPositionsAreNoneButStillGiveAReference) {
  EXPECT_THAT(_colors_from_positions({}).first, IsEmpty());
  EXPECT_EQ(_colors_from_positions({}).second, host::Value::list({0.0}));
  const host::Value given = host::Value::list({3.0});
  EXPECT_EQ(_colors_from_positions({}, given).second.as_list()->get(), given.as_list()->get());
}

TEST(SpacingColours, OfOnePositionHaveNothingToMeasure) {
  try {
    _colors_from_positions({{1, 2, 3}});
    FAIL() << "no error";
  } catch (const host::Error& e) {
    EXPECT_EQ(e.kind(), host::ErrorKind::index);
    EXPECT_STREQ(e.what(), "list index out of range");
  }
}

TEST(SpacingColours, AreTheCompositionOfThePublishedFunctionsBitForBit) {
  for (const std::size_t n : {2, 3, 4, 5, 6, 7, 8, 9, 250, 511, 512, 513, 514, 515, 516, 1024, 1025, 1026, 5000}) {
    const std::vector<Position> positions = walk(n);
    const auto plain = plain_colours(positions, {});
    const auto fast = _colors_from_positions(positions);
    ASSERT_EQ(fast.second, plain.second) << n;
    ASSERT_EQ(fast.first, plain.first) << n;
    const host::Value ref = host::Value::list({0.3});
    ASSERT_EQ(_colors_from_positions(positions, ref).first, plain_colours(positions, ref).first) << n;
  }
}

TEST(SpacingColours, OfPositionsThatAreNoNumbersAreThoseOfTheComposition) {
  std::vector<Position> positions = walk(600);
  positions[100].x = std::nan("");
  positions[510].y = std::numeric_limits<double>::infinity();
  EXPECT_EQ(_colors_from_positions(positions, host::Value::list({1.0})).first,
            plain_colours(positions, host::Value::list({1.0})).first);
}

TEST(StandardColours, AreAllAlike) {
  EXPECT_THAT(compute_standard_colors(3), ElementsAre(kStandard, kStandard, kStandard));
  EXPECT_THAT(compute_standard_colors(2.9), ElementsAre(kStandard, kStandard));
  EXPECT_THAT(compute_standard_colors("1"), ElementsAre(kStandard));
  EXPECT_THAT(compute_standard_colors(0), IsEmpty());
  EXPECT_THAT(compute_standard_colors(-2), IsEmpty());
  EXPECT_THROW(compute_standard_colors({}), host::Error);
}

class TemperatureColours : public EngineTest {};

TEST_F(TemperatureColours, DivideAtTheCurrentTime) {
  fake.current_frame = 12.0;
  EXPECT_THAT(compute_temperature_colors(5, 10.0, 1.0), ElementsAre(kPast, kPast, kPast, kFuture, kFuture));
  EXPECT_THAT(recorder.log(), ElementsAre("oma.MAnimControl.currentTime()"));
  fake.current_frame = 12.5;  // not rounded
  EXPECT_THAT(compute_temperature_colors(3, 10.0, 2.0), ElementsAre(kPast, kPast, kFuture));
}

TEST_F(TemperatureColours, TakeAStepOfZeroAsOne) {
  fake.current_frame = 12.0;
  for (const double step : {0.0, -3.0, 1e-9})
    EXPECT_THAT(compute_temperature_colors(4, 10.0, step), ElementsAre(kPast, kPast, kPast, kFuture)) << step;
}

TEST_F(TemperatureColours, AreAllFutureBeforeTheTrail) {
  fake.current_frame = 9.0;
  EXPECT_THAT(compute_temperature_colors(2, 10.0, 1.0), ElementsAre(kFuture, kFuture));
}

TEST_F(TemperatureColours, StartAtTheFirstIndexWhereTheTimeCannotBeRead) {
  recorder.fail_line("oma.");
  EXPECT_THAT(compute_temperature_colors(3, 10.0, 1.0), ElementsAre(kPast, kFuture, kFuture));
}

TEST_F(TemperatureColours, NeedANumberOfPoints) {
  EXPECT_THROW(compute_temperature_colors("many", 10.0, 1.0), host::Error);
  EXPECT_THAT(compute_temperature_colors(-1, 10.0, 1.0), IsEmpty());
}

TEST(BeatColours, AlternateFromKeyToKey) {
  EXPECT_THAT(compute_beats_colors(6, 0.0, 1.0, {2.0, 4.0}),
              ElementsAre(kWhite, kWhite, kGreen, kGreen, kWhite, kWhite));
  EXPECT_THAT(compute_beats_colors(4, 1.5, 0.25, {2.0}), ElementsAre(kWhite, kWhite, kGreen, kGreen));
}

TEST(BeatColours, AreWhiteWithoutKeys) {
  EXPECT_THAT(compute_beats_colors(3, 0.0, 1.0, {}), ElementsAre(kWhite, kWhite, kWhite));
}

TEST(BeatColours, DoNotMindTheOrderOfKeys) {
  EXPECT_EQ(compute_beats_colors(6, 0.0, 1.0, {4.0, 2.0}), compute_beats_colors(6, 0.0, 1.0, {2.0, 4.0}));
}

TEST(BeatColours, CountDuplicateKeysTwice) {
  EXPECT_THAT(compute_beats_colors(3, 0.0, 1.0, {1.0, 1.0}), ElementsAre(kWhite, kWhite, kWhite));
}

TEST(BeatColours, TakeAStepOfZeroAsOne) {
  EXPECT_EQ(compute_beats_colors(6, 0.0, 0.0, {2.0, 4.0}), compute_beats_colors(6, 0.0, 1.0, {2.0, 4.0}));
}

TEST(BeatColours, NeedANumberOfPoints) {
  EXPECT_THROW(compute_beats_colors({}, 0.0, 1.0, {}), host::Error);
  EXPECT_THAT(compute_beats_colors(-1, 0.0, 1.0, {2.0}), IsEmpty());
}

}  // namespace
}  // namespace vantorelix
