#include "engine/trails/trail_data.h"

#include <gmock/gmock.h>

#include "host/error.h"
#include "tests/support/engine_test.h"
#include "tests/support/trail_scene.h"

namespace vantorelix {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class TrailDataTest : public support::EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    fake.add("|ball").keys = {3.0, 1.0};
    fake.range_last = 3.0;
  }
};

TEST_F(TrailDataTest, HoldsSamplesColoursAndKeysOfThePlaybackRange) {
  const auto computed = _compute_trail_data("|ball", 2);
  ASSERT_TRUE(computed);
  const TrailData& data = computed->first;
  EXPECT_THAT(*data.viz.positions, ElementsAre(Position{1, 0, 0}, Position{1.5, 0, 0}, Position{2, 0, 0},
                                               Position{2.5, 0, 0}, Position{3, 0, 0}));
  // Even spacing is the baseline itself: 0.4 of the ramp, between cyan and green.
  EXPECT_THAT(*data.viz.colors, SizeIs(5));
  EXPECT_NEAR(data.viz.colors->front().z, 0.4, 1e-12);
  EXPECT_THAT(data.key_times, ElementsAre(1.0, 3.0));
  EXPECT_THAT(*data.viz.key_positions, ElementsAre(Position{1, 0, 0}, Position{3, 0, 0}));
  EXPECT_THAT(*data.viz.key_colors, ElementsAre(Colour{1, 1, 1}, Colour{1, 1, 1}));
  EXPECT_EQ(computed->second, host::Value::list({0.5}));
}

TEST_F(TrailDataTest, OneSamplerServesSamplesAndKeys) {
  _compute_trail_data("|ball", 1);
  EXPECT_EQ(recorder.log(),
            support::together({{"cmds.playbackOptions(q=True, min=True)", "cmds.playbackOptions(q=True, max=True)"},
                               support::fast_sampler_lines("ball"),
                               {"plug.translation_at(1.0)", "plug.translation_at(2.0)", "plug.translation_at(3.0)",
                                "cmds.keyframe('|ball', q=True, timeChange=True)", "plug.translation_at(1.0)",
                                "plug.translation_at(3.0)"}}));
}

TEST_F(TrailDataTest, AGivenSamplerIsUsedAndNoneIsMade) {
  const auto computed = _compute_trail_data("|ball", 1, {}, _make_slow_sampler("|ball"));
  EXPECT_THAT(*computed->first.viz.positions, SizeIs(3));
  EXPECT_EQ(recorder.count("om.findPlug("), 0u);
  EXPECT_EQ(recorder.count("cmds.getAttr('|ball.worldMatrix[0]', time="), 5u);
}

TEST_F(TrailDataTest, FewerThanTwoPositionsGiveNothingAndNoKeysAreRead) {
  for (const double last : {1.0, 0.0, -5.0}) {
    fake.range_last = last;
    EXPECT_FALSE(_compute_trail_data("|ball", 1)) << last;
  }
  EXPECT_EQ(recorder.count("cmds.keyframe("), 0u);
}

TEST_F(TrailDataTest, DensityIsTruncatedAndAtLeastOne) {
  for (const host::Value& density : {host::Value(0), host::Value(-3), host::Value(0.9), host::Value(1.9)}) {
    EXPECT_THAT(*_compute_trail_data("|ball", density)->first.viz.positions, SizeIs(3)) << density.text();
  }
  EXPECT_THAT(*_compute_trail_data("|ball", 2.9)->first.viz.positions, SizeIs(5));
}

TEST_F(TrailDataTest, AnObjectWithoutKeysStillHasATrail) {
  fake.node("ball").keys.clear();
  const auto computed = _compute_trail_data("|ball", 1);
  EXPECT_THAT(*computed->first.viz.positions, SizeIs(3));
  EXPECT_THAT(computed->first.key_times, IsEmpty());
  EXPECT_THAT(*computed->first.viz.key_positions, IsEmpty());
  EXPECT_THAT(*computed->first.viz.key_colors, IsEmpty());
}

TEST_F(TrailDataTest, AReferenceChangesTheColoursOnlyAndIsHandedBack) {
  const auto own = _compute_trail_data("|ball", 1);
  const host::Value ref = host::Value::list({10.0});
  const auto given = _compute_trail_data("|ball", 1, ref);
  EXPECT_EQ(given->second, ref);
  EXPECT_NE(*given->first.viz.colors, *own->first.viz.colors);
  EXPECT_EQ(*given->first.viz.positions, *own->first.viz.positions);
  EXPECT_EQ(*given->first.viz.key_positions, *own->first.viz.key_positions);
  EXPECT_EQ(given->first.key_times, own->first.key_times);
}

TEST_F(TrailDataTest, ErrorsReachTheCaller) {
  EXPECT_THROW(_compute_trail_data("|gone", 1), host::Error);
  EXPECT_THROW(_compute_trail_data("|ball", "many"), host::Error);
  recorder.fail_line("cmds.keyframe(");
  EXPECT_THROW(_compute_trail_data("|ball", 1), host::Error);
}

}  // namespace
}  // namespace vantorelix
