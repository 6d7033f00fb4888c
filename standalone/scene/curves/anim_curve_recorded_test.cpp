// Values that Maya itself gave for its own curves, to the six decimals that they were written with.

#include <gtest/gtest.h>

#include <cmath>

#include "standalone/scene/curves/anim_curve.h"

namespace vantorelix::standalone {
namespace {

struct Sample {
  double frame;
  double value;
};

Key key(double time, double value, Tangent in, Tangent out) {
  return {.time = time, .value = value, .in = in, .out = out};
}
Key key(double time, double value) { return key(time, value, Tangent::automatic, Tangent::automatic); }

// Maya's per-frame bake of a camera that moves on a weighted curve with automatic tangents, at 24 frames a second; it
// went through single precision, hence the relative part of the tolerance.
TEST(RecordedCurves, AWeightedCameraMove) {
  AnimCurve curve;
  curve.assign({key(11, 9.5137459092238359), key(100, -31.473115400760712)}, true, Infinity::constant,
               Infinity::constant);
  for (const auto& [frame, value] : {Sample{1, 9.513746}, Sample{12, 9.498339}, Sample{20, 8.341122},
                                     Sample{30, 4.707375}, Sample{38, 0.485949}, Sample{68, -19.387447}})
    EXPECT_NEAR(curve.evaluate(frame), value, 5e-7 + std::abs(value) * 6e-8) << frame;
}

// A two-key curve with pre-infinity cycle with offset and post-infinity cycle, asked far outside its keys.
TEST(RecordedCurves, CyclesFarAway) {
  AnimCurve curve;
  curve.assign({key(1, 0), key(24, 10)}, false, Infinity::cycle_offset, Infinity::cycle);
  for (const auto& [frame, value] :
       {Sample{12, 4.674119}, Sample{24, 10.0}, Sample{25, 0.055067}, Sample{37, 5.972713}, Sample{47, 0.0},
        Sample{5820, 0.0}, Sample{4459471, 0.0}, Sample{9514493, 5.972713}, Sample{100109698, 5.325881},
        Sample{0, -0.055067}, Sample{-70, -30.213693}, Sample{-4645, -2020.0}, Sample{-100000181, -43478340.0},
        Sample{-500000000, -217391304.674119}})
    EXPECT_NEAR(curve.evaluate(frame), value, 6e-7) << frame;
}

// A curve with many sorts of tangent; its values were saved in single precision.
TEST(RecordedCurves, AutomaticLinearAndSteppedTangents) {
  using enum Tangent;
  AnimCurve curve;
  curve.assign({key(1, -8.653366), key(11, -6.490576), key(21, -6.113196, flat, linear),
                key(36, -3.958113, linear, linear), key(46, -5.905977, linear, step), key(53, -5.118543, linear, step),
                key(73, -3.875225, linear, step), key(80, -2.942738, linear, step),
                key(89, -1.927362, linear, step_next), key(96, -1.243537, linear, step_next), key(120, 5.603338)},
               false, Infinity::constant, Infinity::constant);
  // The automatic key at 11 is as steep as the one at 21 lets it be: the spline would pass -6.1.
  for (const auto& [frame, value] :
       {Sample{0, -8.653366}, Sample{2, -8.602998}, Sample{6, -7.713489}, Sample{9, -6.860420}, Sample{13, -6.306414},
        Sample{16, -6.160368}, Sample{19, -6.116215}, Sample{22, -5.969524}, Sample{35, -4.101785},
        Sample{41, -4.932045}, Sample{79, -3.875225}, Sample{80, -2.942738}, Sample{88, -2.942738},
        Sample{90, -1.243537}, Sample{95, -1.243537}, Sample{97, 5.603338}, Sample{120, 5.603338}})
    EXPECT_NEAR(curve.evaluate(frame), value, 2e-6) << frame;
}

// Weighted tangents set by hand; slopes and weights (thirds of the segment, in steps of 1/9999) as Maya saved them.
TEST(RecordedCurves, WeightedTangentsSetByHand) {
  struct Side {
    double slope, weight;
  };
  const auto fixed = [](double time, double value, double seconds_in, Side in, double seconds_out, Side out) {
    Key made = key(time, value, Tangent::fixed, Tangent::fixed);
    made.in_x = 3.0 * in.weight * seconds_in, made.in_y = in.slope * made.in_x;
    made.out_x = 3.0 * out.weight * seconds_out, made.out_y = out.slope * made.out_x;
    return made;
  };
  const double short_gap = 7.0 / 24.0, long_gap = 10.0 / 24.0;
  AnimCurve curve;
  curve.assign({fixed(46, -5.905977, 0, {0, 0}, short_gap, {0, 1.0 / 3.0}),
                fixed(53, -5.118543, short_gap, {-4.29038143, 0.766876688}, long_gap, {3.90671706, 0.540154015}),
                fixed(63, -5.118543, long_gap, {3.98060751, 0.520752075}, long_gap, {-4.16532135, 0.508150815}),
                fixed(73, -3.875225, long_gap, {0.21684365, 0.616661666}, 0, {0, 0})},
               true, Infinity::constant, Infinity::constant);
  for (const auto& [frame, value] :
       {Sample{47, -5.767788}, Sample{48, -5.315578}, Sample{50, -4.835590}, Sample{52, -4.960766},
        Sample{54, -4.976541}, Sample{57, -4.938450}, Sample{60, -5.359269}, Sample{62, -5.261964},
        Sample{65, -5.335350}, Sample{67, -5.058857}, Sample{69, -4.357775}, Sample{72, -3.904232}})
    EXPECT_NEAR(curve.evaluate(frame), value, 2e-6) << frame;
}

}  // namespace
}  // namespace vantorelix::standalone
