#include "standalone/scene/curves/key_insertion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "host/error.h"
#include "standalone/scene/curves/key_tangents.h"

namespace vantorelix::standalone {
namespace {

constexpr Tangent kSorts[] = {Tangent::fixed,   Tangent::linear,    Tangent::flat,     Tangent::step,
                              Tangent::slow,    Tangent::fast,      Tangent::spline,   Tangent::clamped,
                              Tangent::plateau, Tangent::step_next, Tangent::automatic};

class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}
  double between(double a, double b) { return a + (b - a) * (static_cast<double>(engine_() % 10001) / 10000.0); }
  std::size_t below(std::size_t n) { return engine_() % n; }

 private:
  std::mt19937 engine_;
};

AnimCurve some_curve(Random& random, bool weighted) {
  constexpr Infinity kEnds[] = {Infinity::constant, Infinity::linear};
  std::vector<Key> keys;
  double time = -5.0;
  for (std::size_t i = 0, count = 1 + random.below(6); i < count; ++i) {
    Key key{.time = time += random.between(0.5, 9.0), .value = random.between(-10.0, 10.0)};
    key.in = kSorts[random.below(std::size(kSorts))];
    key.out = kSorts[random.below(std::size(kSorts))];
    key.in_x = random.between(0.0, 0.5), key.in_y = random.between(-3.0, 3.0);
    key.out_x = random.between(0.0, 0.5), key.out_y = random.between(-3.0, 3.0);
    keys.push_back(key);
  }
  AnimCurve curve;
  curve.assign(std::move(keys), weighted, kEnds[random.below(2)], kEnds[random.below(2)]);
  return curve;
}

AnimCurve with(const AnimCurve& curve, std::vector<Key> keys) {
  AnimCurve made = curve;
  made.assign(std::move(keys), curve.weighted(), curve.pre_infinity(), curve.post_infinity());
  return made;
}

void expect_same_shape(const AnimCurve& have, const AnimCurve& want, unsigned seed) {
  double largest = 1.0;
  for (double frame = -20.0; frame < 70.0; frame += 0.171) largest = std::max(largest, std::abs(want.evaluate(frame)));
  for (double frame = -20.0; frame < 70.0; frame += 0.171)
    ASSERT_NEAR(have.evaluate(frame), want.evaluate(frame), 1e-8 * largest) << "seed " << seed << " frame " << frame;
}

TEST(KeyInsertion, KeepsTheShapeOfACurveWithAnyTangents) {
  for (unsigned seed = 0; seed < 600; ++seed) {
    Random random(seed);
    const AnimCurve before = some_curve(random, seed % 2 == 0);
    const double frame = random.between(-12.0, 60.0);
    const AnimCurve after = with(before, with_key_inserted(before, frame));
    ASSERT_EQ(after.keys().size(), before.keys().size() + 1);
    expect_same_shape(after, before, seed);
  }
}

TEST(KeyInsertion, LeavesTheCurveBeyondTheNeighboursAloneWhenTheKeyIsMoved) {
  AnimCurve curve;
  curve.assign({{.time = 0, .value = 1}, {.time = 10, .value = 5}, {.time = 20, .value = 7}, {.time = 30, .value = 4}},
               false, Infinity::constant, Infinity::constant);
  AnimCurve moved = with(curve, with_key_inserted(curve, 14.0));
  moved.set_key(14.0, 100.0);
  for (const double frame : {3.0, 9.5, 10.0, 20.0, 21.5, 28.0})
    EXPECT_NEAR(moved.evaluate(frame), curve.evaluate(frame), 1e-13) << frame;
  EXPECT_EQ(moved.evaluate(14.0), 100.0);
}

TEST(KeyInsertion, AmongLinesStaysALineOnBothSides) {
  AnimCurve curve;
  const auto line = [](double time, double value) {
    return Key{.time = time, .value = value, .in = Tangent::linear, .out = Tangent::linear};
  };
  curve.assign({line(0, 0), line(10, 10)}, false, Infinity::constant, Infinity::constant);
  AnimCurve moved = with(curve, with_key_inserted(curve, 5.0));
  moved.set_key(5.0, 0.0);
  EXPECT_EQ(moved.evaluate(2.5), 0.0);
  EXPECT_EQ(moved.evaluate(7.5), 5.0);
}

TEST(KeyInsertion, OnAKeyChangesNothing) {
  AnimCurve curve;
  curve.assign({{.time = 0, .value = 1}, {.time = 4, .value = 2}}, false, Infinity::constant, Infinity::constant);
  EXPECT_EQ(with_key_inserted(curve, 4.0).size(), 2u);
}

TEST(KeyInsertion, BeyondTheEndsOfWhatRepeatsIsRefused) {
  AnimCurve curve;
  curve.assign({{.time = 0, .value = 1}, {.time = 4, .value = 2}}, false, Infinity::constant, Infinity::cycle);
  EXPECT_THROW(with_key_inserted(curve, 5.0), host::Error);
  EXPECT_EQ(with_key_inserted(curve, -1.0).size(), 3u);
}

TEST(KeyTangents, AreTheSlopesOfTheCurveAtItsKeys) {
  for (unsigned seed = 0; seed < 300; ++seed) {
    Random random(seed);
    const AnimCurve curve = some_curve(random, false);
    const auto tangents = tangents_of(curve);
    const auto& keys = curve.keys();
    for (std::size_t i = 0; i + 1 < keys.size(); ++i) {
      if (keys[i].out == Tangent::step || keys[i].out == Tangent::step_next) continue;
      const double step = 1e-6 * (keys[i + 1].time - keys[i].time);
      const double out = (curve.evaluate(keys[i].time + step) - keys[i].value) / step;
      const double in = (keys[i + 1].value - curve.evaluate(keys[i + 1].time - step)) / step;
      EXPECT_NEAR(tangents[i].out_y / tangents[i].out_x, out, 1e-3 * (1.0 + std::abs(out))) << seed;
      EXPECT_NEAR(tangents[i + 1].in_y / tangents[i + 1].in_x, in, 1e-3 * (1.0 + std::abs(in))) << seed;
    }
  }
}

TEST(KeyTangents, ThatAreFixedAsTheyAreLeaveTheCurveAsItIs) {
  for (unsigned seed = 0; seed < 300; ++seed) {
    Random random(seed);
    const AnimCurve curve = some_curve(random, seed % 2 == 0);
    std::vector<Key> keys = curve.keys();
    const auto tangents = tangents_of(curve);
    for (std::size_t i = 0; i < keys.size(); ++i) {
      const bool steps = keys[i].out == Tangent::step || keys[i].out == Tangent::step_next;
      fix_in(keys[i], tangents[i].in_x, tangents[i].in_y, curve.frames_per_second());
      if (!steps) fix_out(keys[i], tangents[i].out_x, tangents[i].out_y, curve.frames_per_second());
    }
    expect_same_shape(with(curve, keys), curve, seed);
  }
}

TEST(KeyTangents, OfAKeyAreFeltNoFartherThanIsSaid) {
  bool felt_at_the_bounds = false;
  for (unsigned seed = 0; seed < 400; ++seed) {
    Random random(seed);
    const AnimCurve before = some_curve(random, seed % 2 == 0);
    const double time = before.keys()[random.below(before.keys().size())].time;
    AnimCurve after = before;
    after.set_key(time, 50.0);
    const FrameRange range = felt_around(before, time);
    for (double frame = -20.0; frame < 70.0; frame += 0.171) {
      if (frame <= range.first || frame >= range.last) {
        ASSERT_EQ(after.evaluate(frame), before.evaluate(frame)) << "seed " << seed << " frame " << frame;
      } else {
        felt_at_the_bounds |= frame < time && after.evaluate(frame) != before.evaluate(frame);
      }
    }
  }
  EXPECT_TRUE(felt_at_the_bounds);
}

}  // namespace
}  // namespace vantorelix::standalone
