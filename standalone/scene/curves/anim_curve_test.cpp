#include "standalone/scene/curves/anim_curve.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <tuple>
#include <vector>

#include "host/error.h"

namespace vantorelix::standalone {
namespace {

constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

Key key(double time, double value, Tangent in, Tangent out) {
  return {.time = time, .value = value, .in = in, .out = out};
}
Key key(double time, double value, Tangent both = Tangent::automatic) { return key(time, value, both, both); }

AnimCurve curve(std::vector<Key> keys, Infinity pre = Infinity::constant, Infinity post = Infinity::constant,
                bool weighted = false) {
  AnimCurve made;
  made.assign(std::move(keys), weighted, pre, post);
  return made;
}

std::vector<Key> random_keys(unsigned seed, std::size_t count, Tangent tangent) {
  std::mt19937 random(seed);
  std::vector<Key> keys;
  double time = -20.0;
  for (std::size_t i = 0; i < count; ++i) {
    time += 0.25 * static_cast<double>(1 + random() % 60);
    keys.push_back(key(time, static_cast<double>(random() % 2001) / 100.0 - 10.0, tangent));
  }
  return keys;
}

void expect_value_error(const auto& edit) {
  try {
    edit();
    ADD_FAILURE() << "nothing was thrown";
  } catch (const host::Error& error) {
    EXPECT_EQ(error.kind(), host::ErrorKind::value);
  }
}

// --- values between keys ---------------------------------------------------------------------------------------

TEST(AnimCurve, WithoutKeysIsZeroAndWithOneIsItsValue) {
  EXPECT_EQ(AnimCurve().evaluate(7.0), 0.0);
  for (const Infinity infinity :
       {Infinity::constant, Infinity::linear, Infinity::cycle, Infinity::cycle_offset, Infinity::oscillate}) {
    const AnimCurve one = curve({key(10, 4)}, infinity, infinity);
    for (const double frame : {-1e9, 9.0, 10.0, 11.0, 1e9}) EXPECT_EQ(one.evaluate(frame), 4.0);
    EXPECT_TRUE(one.is_constant());
  }
}

TEST(AnimCurve, FlatTangentsEaseInAndOut) {
  const AnimCurve eased = curve({key(0, 0, Tangent::flat), key(8, 16, Tangent::flat)});
  for (double frame = 0.0; frame <= 8.0; frame += 0.5) {
    const double s = frame / 8.0;
    EXPECT_NEAR(eased.evaluate(frame), 16.0 * s * s * (3.0 - 2.0 * s), 1e-13);
  }
}

TEST(AnimCurve, FixedSlopesMakeHermitesCubic) {
  Key a = key(10, 1, Tangent::fixed), b = key(34, 3, Tangent::fixed);
  a.out_x = 0.5, a.out_y = 3.0;  // 6 a second: 6 over the second between the keys
  b.in_x = 2.0, b.in_y = -4.0;   // -2 over it
  const AnimCurve hermite = curve({a, b});
  EXPECT_NEAR(hermite.evaluate(22.0), (1.0 + 3.0) / 2.0 + (6.0 + 2.0) / 8.0, 1e-13);
  EXPECT_NEAR(hermite.evaluate(16.0), 0.84375 * 1 + 0.15625 * 3 + 0.140625 * 6 + 0.046875 * 2, 1e-13);
}

TEST(AnimCurve, FixedSlopesFollowTheFrameRate) {
  Key a = key(0, 0, Tangent::fixed), b = key(10, 0, Tangent::fixed);
  a.out_x = 1.0, a.out_y = 24.0;
  AnimCurve fixed = curve({a, b});
  EXPECT_NEAR(fixed.evaluate(5.0), 10.0 / 8.0, 1e-13);
  fixed.set_frames_per_second(48.0);
  EXPECT_NEAR(fixed.evaluate(5.0), 5.0 / 8.0, 1e-13);
}

TEST(AnimCurve, SlowThenFastIsEvenAcceleration) {
  const AnimCurve falling = curve({key(0, 0, Tangent::slow), key(10, 5, Tangent::fast)});
  for (double frame = 0.0; frame <= 10.0; frame += 1.0)
    EXPECT_NEAR(falling.evaluate(frame), 5.0 * frame * frame / 100.0, 1e-13);
}

TEST(AnimCurve, LinesAreStraight) {
  const AnimCurve line = curve({key(0, 1, Tangent::linear), key(4, 3, Tangent::linear), key(5, 0, Tangent::linear)});
  EXPECT_EQ(line.evaluate(1.0), 1.5);
  EXPECT_EQ(line.evaluate(4.5), 1.5);
  const AnimCurve weighted = curve(line.keys(), Infinity::constant, Infinity::constant, true);
  EXPECT_EQ(weighted.evaluate(1.0), 1.5);
}

TEST(AnimCurve, StepsHoldTheirValueUpToTheNextKey) {
  const AnimCurve steps = curve({key(0, 1, Tangent::linear, Tangent::step), key(10, 2), key(20, 3)});
  EXPECT_EQ(steps.evaluate(std::nextafter(10.0, 0.0)), 1.0);
  EXPECT_EQ(steps.evaluate(10.0), 2.0);
}

TEST(AnimCurve, StepNextTakesTheNextValueRightAfterTheKey) {
  const AnimCurve steps = curve({key(0, 1, Tangent::linear, Tangent::step_next), key(10, 2), key(20, 3)});
  EXPECT_EQ(steps.evaluate(0.0), 1.0);
  EXPECT_EQ(steps.evaluate(std::nextafter(0.0, 1.0)), 2.0);
  EXPECT_EQ(steps.evaluate(9.0), 2.0);
  EXPECT_EQ(steps.evaluate(10.0), 2.0);
  EXPECT_EQ(steps.evaluate(20.0), 3.0);
}

TEST(AnimCurve, AutomaticTangentsNeverLeaveTheRangeOfTheirKeys) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    for (const bool weighted : {false, true}) {
      const std::vector<Key> keys = random_keys(seed, 12, Tangent::automatic);
      const AnimCurve smooth = curve(keys, Infinity::constant, Infinity::constant, weighted);
      for (std::size_t i = 0; i + 1 < keys.size(); ++i) {
        const auto [low, high] = std::minmax(keys[i].value, keys[i + 1].value);
        for (double frame = keys[i].time; frame < keys[i + 1].time; frame += 0.125) {
          ASSERT_GE(smooth.evaluate(frame), low - 1e-12) << seed;
          ASSERT_LE(smooth.evaluate(frame), high + 1e-12) << seed;
        }
      }
    }
  }
}

TEST(AnimCurve, SplinesAreSmoothAcrossTheirKeys) {
  const std::vector<Key> keys = random_keys(7, 10, Tangent::spline);
  const AnimCurve spline = curve(keys);
  const double h = 1e-7;
  for (std::size_t i = 1; i + 1 < keys.size(); ++i) {
    const double t = keys[i].time;
    const double before = (keys[i].value - spline.evaluate(t - h)) / h;
    const double after = (spline.evaluate(t + h) - keys[i].value) / h;
    EXPECT_NEAR(before, after, 1e-3) << t;
  }
}

TEST(AnimCurve, AFrameOnAKeyIsExactlyItsValueWhateverTheTangents) {
  for (const Tangent tangent :
       {Tangent::fixed, Tangent::linear, Tangent::flat, Tangent::step, Tangent::step_next, Tangent::slow, Tangent::fast,
        Tangent::spline, Tangent::clamped, Tangent::plateau, Tangent::automatic}) {
    for (const bool weighted : {false, true}) {
      std::vector<Key> keys = random_keys(3, 40, tangent);
      for (Key& k : keys) k.time /= 3.0, k.in_y = k.out_y = 0.7, k.out_x = 0.1;
      for (const Infinity infinity : {Infinity::constant, Infinity::linear, Infinity::cycle_offset}) {
        const AnimCurve c = curve(keys, infinity, infinity, weighted);
        for (const Key& k : keys) EXPECT_EQ(c.evaluate(k.time), k.value);
      }
    }
  }
}

TEST(AnimCurve, ManyFramesInAnyOrderGiveTheValuesOfEachAlone) {
  for (const Tangent tangent : {Tangent::automatic, Tangent::step_next, Tangent::fixed}) {
    std::vector<Key> keys = random_keys(11, 60, tangent);
    for (Key& k : keys) k.out_y = 0.3, k.out_x = 0.05;
    for (const bool weighted : {false, true}) {
      const AnimCurve c = curve(keys, Infinity::cycle, Infinity::oscillate, weighted);
      std::mt19937 random(5);
      std::vector<double> frames, values(4000);
      for (int i = 0; i < 4000; ++i) frames.push_back(static_cast<double>(random() % 200000) / 100.0 - 600.0);
      KeyPlaces places;
      c.evaluate(frames, values.data(), places);
      for (std::size_t i = 0; i < frames.size(); ++i) EXPECT_EQ(values[i], c.evaluate(frames[i])) << frames[i];
    }
  }
}

// --- weighted ----------------------------------------------------------------------------------------------------

TEST(AnimCurve, WeightedTangentsBendTime) {
  Key a = key(0, 0, Tangent::fixed), b = key(24, 10, Tangent::fixed);
  a.out_x = 2.4, a.out_y = 6.0;  // control point (19.2, 2)
  b.in_x = 0.6, b.in_y = 3.0;    // control point (19.2, 9)
  const AnimCurve c = curve({a, b}, Infinity::constant, Infinity::constant, true);
  // At the middle of the Bezier: (0 + 3 * 19.2 + 3 * 19.2 + 24) / 8 and (0 + 3 * 2 + 3 * 9 + 10) / 8.
  EXPECT_NEAR(c.evaluate(17.4), 5.375, 1e-12);
}

TEST(AnimCurve, WithoutFixedTangentsWeightsMakeNoDifference) {
  for (const Tangent tangent : {Tangent::spline, Tangent::clamped, Tangent::automatic, Tangent::flat, Tangent::fast}) {
    const std::vector<Key> keys = random_keys(17, 12, tangent);
    AnimCurve plain = curve(keys);
    AnimCurve weighted = plain;
    weighted.set_weighted(true);
    for (double frame = keys.front().time; frame < keys.back().time; frame += 0.37)
      EXPECT_NEAR(weighted.evaluate(frame), plain.evaluate(frame), 1e-12);
  }
}

// --- beyond the keys ---------------------------------------------------------------------------------------------

std::vector<Key> rise() {
  return {key(10, 2, Tangent::spline), key(16, 7, Tangent::spline), key(20, 4, Tangent::spline)};
}

TEST(AnimCurve, ConstantInfinityHoldsTheEnds) {
  const AnimCurve c = curve(rise());
  for (const double frame : {9.999, -1e300, -kInfinite}) EXPECT_EQ(c.evaluate(frame), 2.0);
  for (const double frame : {20.001, 1e300, kInfinite}) EXPECT_EQ(c.evaluate(frame), 4.0);
}

TEST(AnimCurve, LinearInfinityGoesOnAlongTheEndTangents) {
  const AnimCurve c = curve(rise(), Infinity::linear, Infinity::linear);
  EXPECT_NEAR(c.evaluate(4.0), 2.0 - 5.0, 1e-13);
  EXPECT_NEAR(c.evaluate(24.0), 4.0 - 3.0, 1e-13);
  const AnimCurve flat =
      curve({key(0, 1, Tangent::flat), key(5, 2, Tangent::flat)}, Infinity::linear, Infinity::linear);
  EXPECT_EQ(flat.evaluate(-100.0), 1.0);
  EXPECT_EQ(flat.evaluate(100.0), 2.0);
}

TEST(AnimCurve, InfiniteFramesGiveTheEnds) {
  for (const Infinity infinity : {Infinity::constant, Infinity::linear, Infinity::cycle, Infinity::cycle_offset}) {
    const AnimCurve c = curve(rise(), infinity, infinity);
    EXPECT_EQ(c.evaluate(-kInfinite), 2.0);
    EXPECT_EQ(c.evaluate(kInfinite), 4.0);
  }
}

TEST(AnimCurve, CyclesRepeatEachPeriod) {
  const AnimCurve c = curve(rise(), Infinity::cycle, Infinity::cycle);
  for (double frame = 10.25; frame < 20.0; frame += 0.25) {
    for (const double periods : {-1e6, -3.0, -1.0, 1.0, 2.0, 1e6})
      EXPECT_EQ(c.evaluate(frame + 10.0 * periods), c.evaluate(frame)) << frame << ' ' << periods;
  }
  EXPECT_EQ(c.evaluate(30.0), 2.0) << "a seam after the keys starts the next repetition";
  EXPECT_EQ(c.evaluate(0.0), 4.0) << "a seam before them ends one";
}

TEST(AnimCurve, CyclesWithOffsetAddTheirRiseEachPeriod) {
  const AnimCurve c = curve(rise(), Infinity::cycle_offset, Infinity::cycle_offset);
  for (double frame = 10.0; frame <= 20.0; frame += 0.25) {
    for (const double periods : {-1000.0, -2.0, -1.0, 1.0, 2.0, 1000.0})
      EXPECT_NEAR(c.evaluate(frame + 10.0 * periods), c.evaluate(frame) + 2.0 * periods, 1e-12) << frame;
  }
}

TEST(AnimCurve, OscillationMirrorsAtEachEnd) {
  const AnimCurve c = curve(rise(), Infinity::oscillate, Infinity::oscillate);
  for (double away = 0.0; away <= 35.0; away += 0.25) {
    EXPECT_EQ(c.evaluate(20.0 + away), c.evaluate(20.0 - away)) << away;
    EXPECT_EQ(c.evaluate(10.0 - away), c.evaluate(10.0 + away)) << away;
    EXPECT_EQ(c.evaluate(12.0 + away + 20.0), c.evaluate(12.0 + away)) << away;
  }
}

// --- what keys may be --------------------------------------------------------------------------------------------

TEST(AnimCurve, KeysAreSortedAndTheLastOfEqualTimesWins) {
  const AnimCurve c = curve({key(5, 1), key(3, 2), key(5, 3), key(4, 4), key(3, 5)});
  ASSERT_EQ(c.keys().size(), 3u);
  EXPECT_EQ(c.keys()[0].time, 3.0);
  EXPECT_EQ(c.keys()[0].value, 5.0);
  EXPECT_EQ(c.keys()[1].value, 4.0);
  EXPECT_EQ(c.keys()[2].value, 3.0);
}

TEST(AnimCurve, NumbersThatAreNotFiniteAreRefusedAndNothingChanges) {
  AnimCurve c = curve({key(0, 1), key(10, 2)});
  for (const double bad : {kNotANumber, kInfinite, -kInfinite}) {
    for (double Key::*member : {&Key::time, &Key::value, &Key::in_x, &Key::in_y, &Key::out_x, &Key::out_y}) {
      Key k = key(5, 5);
      k.*member = bad;
      expect_value_error([&] { c.set_key(k); });
      expect_value_error([&] { c.assign({key(1, 1), k}, true, Infinity::cycle, Infinity::cycle); });
    }
    expect_value_error([&] { c.set_key(bad, 1.0); });
    expect_value_error([&] { c.set_key(0.0, bad); });
    expect_value_error([&] { c.set_frames_per_second(bad); });
  }
  expect_value_error([&] { c.set_frames_per_second(0.0); });
  expect_value_error([] { AnimCurve(CurveKind::time, -1.0); });
  EXPECT_EQ(c.keys().size(), 2u);
  EXPECT_EQ(c.evaluate(0.0), 1.0);
  EXPECT_FALSE(c.weighted());
}

TEST(AnimCurve, ExtremeKeysAndFramesAreHarmless) {
  const double tiny = std::numeric_limits<double>::denorm_min();
  const double huge = std::numeric_limits<double>::max();
  for (const Tangent tangent :
       {Tangent::fixed, Tangent::linear, Tangent::spline, Tangent::automatic, Tangent::fast, Tangent::step_next}) {
    for (const bool weighted : {false, true}) {
      for (const Infinity infinity : {Infinity::linear, Infinity::cycle_offset, Infinity::oscillate}) {
        std::vector<Key> keys = {key(-huge, huge, tangent),    key(0, -huge, tangent), key(tiny, 1e5, tangent),
                                 key(2 * tiny, -1e5, tangent), key(1, 0, tangent),     key(huge, huge, tangent)};
        for (Key& k : keys) k.in_x = tiny, k.in_y = -huge, k.out_x = huge, k.out_y = huge;
        const AnimCurve c = curve(keys, infinity, infinity, weighted);
        for (const double frame :
             {-kInfinite, -huge, -1.0, 0.0, tiny, 2 * tiny, 0.5, 1.0, 1e17, huge, kInfinite, kNotANumber})
          c.evaluate(frame);
        EXPECT_EQ(c.evaluate(tiny), 1e5);
        EXPECT_EQ(c.evaluate(1.0), 0.0);
      }
    }
  }
}

TEST(AnimCurve, SlopesTooSteepForNumbersStayFinite) {
  for (const Tangent tangent : {Tangent::linear, Tangent::spline, Tangent::clamped, Tangent::automatic}) {
    const double close = std::nextafter(1.0, 2.0);
    const AnimCurve c =
        curve({key(0, 0, tangent), key(1, 1e300, tangent), key(close, -1e300, tangent), key(2, 3, tangent)});
    for (const double frame : {0.5, 1.0, close, 1.5}) EXPECT_TRUE(std::isfinite(c.evaluate(frame))) << frame;
  }
}

TEST(AnimCurve, FarFramesOfCyclesCostNoLoop) {
  const AnimCurve c = curve(rise(), Infinity::cycle, Infinity::cycle);
  for (const double frame : {1e15, 1e100, 1.7e308, -1e15, -1e100, -1.7e308}) {
    const double value = c.evaluate(frame);
    EXPECT_GE(value, 0.0) << frame;
    EXPECT_LE(value, 8.0) << frame;
  }
}

// --- edits -------------------------------------------------------------------------------------------------------

TEST(AnimCurve, EditsGiveTheSameCurveAsAssigningTheirKeys) {
  const std::vector<Key> keys = random_keys(23, 30, Tangent::automatic);
  AnimCurve edited;
  for (std::size_t i = 0; i < keys.size(); ++i) edited.set_key(keys[i * 7 % keys.size()]);
  edited.set_key(1000.0, 5.0);
  EXPECT_TRUE(edited.remove_key(1000.0));
  EXPECT_FALSE(edited.remove_key(1000.0));
  const AnimCurve assigned = curve(keys);
  for (double frame = -30.0; frame < 500.0; frame += 0.7) EXPECT_EQ(edited.evaluate(frame), assigned.evaluate(frame));
}

TEST(AnimCurve, SettingAValueKeepsTheKeysTangents) {
  AnimCurve c = curve({key(0, 0, Tangent::linear), key(10, 10, Tangent::linear)});
  c.set_key(10.0, 20.0);
  EXPECT_EQ(c.keys().size(), 2u);
  EXPECT_EQ(c.evaluate(5.0), 10.0);
  c.set_key(20.0, 0.0);
  EXPECT_EQ(c.keys()[2].in, Tangent::automatic);
}

TEST(AnimCurve, NothingOfTheKeysBeforeAnEditIsLeft) {
  AnimCurve c = curve(random_keys(2, 50, Tangent::automatic));
  c.evaluate(c.keys().back().time - 0.1);
  c.assign({key(0, 0, Tangent::linear), key(10, 10, Tangent::linear)}, false, Infinity::constant, Infinity::constant);
  EXPECT_EQ(c.evaluate(5.0), 5.0);
  c.assign({}, false, Infinity::constant, Infinity::constant);
  EXPECT_EQ(c.evaluate(5.0), 0.0);
}

TEST(AnimCurve, ValuesAtEvenlySpacedKeysAreThoseOfTheKeysInWhateverOrderTheyAreAsked) {
  for (const auto& [first, length, post] : {std::tuple{1.0, 1.0, Infinity::constant},
                                            {-7.5, 0.25, Infinity::cycle},
                                            {0.1, 0.3, Infinity::linear},
                                            {3.0, 1001.7, Infinity::oscillate}}) {
    std::vector<Key> keys;
    for (int i = 0; i < 200; ++i) keys.push_back(key(first + i * length, std::sin(i * 1.7)));
    const AnimCurve even = curve(keys, post, post);
    for (std::size_t i = 0; i < 200; ++i) {
      const Key& asked = keys[i * 77 % 200];
      EXPECT_EQ(even.evaluate(asked.time), asked.value) << first << ' ' << i;
    }
    std::vector<double> times = {5.0};
    even.append_key_times(times);
    ASSERT_EQ(times.size(), 201u);
    EXPECT_EQ(times[0], 5.0);
    for (std::size_t i = 0; i < 200; ++i) EXPECT_EQ(times[i + 1], keys[i].time);
  }
}

TEST(AnimCurve, StepsBetweenEvenlySpacedKeysAreNoKeys) {
  std::vector<Key> keys;
  for (int i = 0; i < 4; ++i) keys.push_back(key(i, i * i, i == 1 ? Tangent::step_next : Tangent::linear));
  const AnimCurve stepped = curve(keys);
  for (const Key& each : keys) EXPECT_EQ(stepped.evaluate(each.time), each.value);
  EXPECT_EQ(stepped.evaluate(1.5), 4.0);
  std::vector<double> times;
  stepped.append_key_times(times);
  EXPECT_EQ(times, (std::vector<double>{0.0, 1.0, 2.0, 3.0}));
}

TEST(AnimCurve, IsConstantOnlyWhenEveryFrameGivesTheSame) {
  EXPECT_TRUE(AnimCurve().is_constant());
  for (const Tangent tangent :
       {Tangent::automatic, Tangent::spline, Tangent::linear, Tangent::step_next, Tangent::fixed}) {
    for (const bool weighted : {false, true}) {
      std::vector<Key> keys = {key(0, 3, tangent), key(5, 3, tangent), key(9, 3, tangent)};
      for (const Infinity infinity : {Infinity::constant, Infinity::linear, Infinity::cycle_offset})
        EXPECT_TRUE(curve(keys, infinity, infinity, weighted).is_constant());
      keys[1].value = 3.5;
      EXPECT_FALSE(curve(keys, Infinity::constant, Infinity::constant, weighted).is_constant());
    }
  }
  Key sloped = key(5, 3, Tangent::fixed);
  sloped.out_y = 1.0;
  EXPECT_FALSE(curve({sloped, key(9, 3)}).is_constant()) << "equal keys, but a bump between them";
  EXPECT_FALSE(curve({key(0, 3), sloped}, Infinity::constant, Infinity::linear).is_constant());
  EXPECT_TRUE(curve({key(0, 3), sloped}, Infinity::constant, Infinity::cycle).is_constant());
  sloped.in_y = 1.0;
  EXPECT_FALSE(curve({sloped}, Infinity::linear, Infinity::constant).is_constant());
}

TEST(AnimCurve, ManyFramesAtOnceGiveTheValuesOfEach) {
  std::vector<Key> even, uneven, level;
  for (int i = 0; i < 20; ++i) {
    even.push_back(key(3 + 0.5 * i, std::sin(i), i == 4 ? Tangent::linear : Tangent::automatic));
    uneven.push_back(key(3 + 0.1 * i * i, std::sin(i)));
    level.push_back(key(3 + 0.5 * i, 7));
  }
  std::vector<Key> bent = even;
  bent[5].out = Tangent::fixed;
  bent[5].out_x = 0.01, bent[5].out_y = 1.0;
  std::vector<AnimCurve> curves = {curve(uneven), curve(level), AnimCurve()};
  for (const Infinity pre : {Infinity::constant, Infinity::linear, Infinity::cycle})
    for (const Infinity post : {Infinity::constant, Infinity::linear, Infinity::oscillate})
      for (const bool weighted : {false, true})
        for (const auto& keys : {even, bent}) curves.push_back(curve(keys, pre, post, weighted));
  std::vector<double> keys;
  for (int i = 19; i >= 0; --i) keys.push_back(3 + 0.5 * i);
  auto all = keys, between = keys, later = keys;
  for (const double frame : {5.0, 5.25, -7.0, 100.0}) all.push_back(frame);
  for (const double frame : {11.3, 5.75, std::nextafter(8.0, 0.0), std::nextafter(8.0, 9.0)}) between.push_back(frame);
  later.push_back(12.6);
  for (const auto& frames : {keys, all, between, later, std::vector{5.0, 5.25}, std::vector{-1.0, 3.0}}) {
    KeyPlaces places;
    for (const AnimCurve& each : curves) {
      std::vector<double> values(frames.size(), 99.0);
      each.evaluate(frames, values.data(), places);
      for (std::size_t i = 0; i < frames.size(); ++i) EXPECT_EQ(values[i], each.evaluate(frames[i])) << frames[i];
    }
  }
}

}  // namespace
}  // namespace vantorelix::standalone
