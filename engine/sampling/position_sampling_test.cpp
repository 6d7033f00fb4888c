#include "engine/sampling/position_sampling.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "host/error.h"
#include "tests/support/engine_test.h"

namespace vantorelix {
namespace {

using support::EngineTest;
using testing::ElementsAre;
using testing::IsEmpty;

class Sampling : public EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    fake.add("|ball");
    fake.motion = [](const std::string&, double t) { return Position{t, 2.0 * t, -t}; };
  }

  std::vector<double> times_of(const std::vector<Position>& positions) {
    std::vector<double> times;
    for (const Position& p : positions) times.push_back(p.x);
    return times;
  }

  // Samples through the slow way, where every time asked for is the position's x.
  std::vector<double> sample_times(double start, double end, double step) {
    return times_of(_sample_positions("|ball", start, end, step, _make_slow_sampler("|ball")));
  }

  host::Error error_of(const std::function<void()>& body) {
    try {
      body();
    } catch (const host::Error& e) {
      return e;
    }
    ADD_FAILURE() << "no error";
    return host::Error("");
  }
};

TEST_F(Sampling, TheSlowQueryReadsTheTranslationRowAtATime) {
  EXPECT_EQ(_world_pos_at("|ball", 3.5), (Position{3.5, 7.0, -3.5}));
  EXPECT_THAT(recorder.log(), ElementsAre("cmds.getAttr('|ball.worldMatrix[0]', time=3.5)"));
}

TEST_F(Sampling, TheFastSamplerChecksItselfOnceAndThenMakesOneCallASample) {
  fake.current_frame = 4.0;
  const SamplerPtr sampler = _make_fast_sampler("|ball");
  ASSERT_NE(sampler, nullptr);
  EXPECT_THAT(recorder.log(), ElementsAre("om.findPlug('|ball', 'worldMatrix')", "plug.elementByLogicalIndex(0)",
                                          "om.MTime.uiUnit()", "cmds.currentTime(q=True)", "plug.translation_at(4.0)",
                                          "cmds.getAttr('|ball.worldMatrix[0]', time=4.0)"));
  recorder.clear();
  EXPECT_EQ((*sampler)(2.0), (Position{2.0, 4.0, -2.0}));
  EXPECT_THAT(recorder.log(), ElementsAre("plug.translation_at(2.0)"));
}

TEST_F(Sampling, TheFastSamplerKeepsTheUnitOfItsCreation) {
  const SamplerPtr sampler = _make_fast_sampler("|ball");
  fake.ui_unit = "pal";
  EXPECT_THROW((*sampler)(2.0), host::Error);  // the fake host knows that it was handed the old token
  EXPECT_EQ(recorder.count("om.MTime.uiUnit"), 1u);
}

TEST_F(Sampling, AFastSamplerMayDifferByATenThousandthInAll) {
  fake.motion = [](const std::string&, double) { return Position{}; };
  fake.context_offset = {0.0001, 0.0, 0.0};
  EXPECT_NE(_make_fast_sampler("|ball"), nullptr);
  fake.context_offset = {std::nextafter(0.0001, 1.0), 0.0, 0.0};
  EXPECT_EQ(_make_fast_sampler("|ball"), nullptr);
  fake.context_offset = {0.00004, -0.00004, 0.00004};  // the sum counts, without signs
  EXPECT_EQ(_make_fast_sampler("|ball"), nullptr);
}

TEST_F(Sampling, AnyFailureLeavesNoFastSampler) {
  ASSERT_NE(_make_fast_sampler("|ball"), nullptr);
  const std::size_t calls = recorder.call_count();
  ASSERT_EQ(calls, 6u);
  for (std::size_t k = 1; k <= calls; ++k) {
    recorder.fail_call(k);
    EXPECT_EQ(_make_fast_sampler("|ball"), nullptr) << "call " << k;
    recorder.stop_failing();
  }
  EXPECT_EQ(_make_fast_sampler("|nobody"), nullptr);
}

TEST_F(Sampling, AnInterruptLeavesTheFastSamplersGuard) {
  recorder.fail_line("cmds.currentTime", 1, support::Failure::interrupt);
  EXPECT_THROW(_make_fast_sampler("|ball"), host::Interrupt);
}

TEST_F(Sampling, AFastSamplerWhoseNodeIsGoneRaises) {
  const SamplerPtr sampler = _make_fast_sampler("|ball");
  fake.remove("|ball");
  EXPECT_THROW((*sampler)(1.0), host::Error);
}

TEST_F(Sampling, BothEndsAreSampledWhereTheRangeIsWholeSteps) {
  const auto times = sample_times(10.0, 20.0, 0.5);
  ASSERT_EQ(times.size(), 21u);
  for (std::size_t i = 0; i < times.size(); ++i) EXPECT_EQ(times[i], 10.0 + static_cast<double>(i) * 0.5);
}

TEST_F(Sampling, TimesAreComputedFromTheStartNotAccumulated) {
  const auto times = sample_times(0.0, 100.0, 0.1);
  ASSERT_EQ(times.size(), 1001u);
  for (std::size_t i = 0; i < times.size(); ++i) EXPECT_EQ(times[i], static_cast<double>(i) * 0.1);
}

TEST_F(Sampling, HalfAStepRoundsToTheEvenCount) {
  EXPECT_THAT(sample_times(0.0, 1.0, 0.4), ElementsAre(0.0, 0.4, 0.8));             // 2.5 steps
  EXPECT_THAT(sample_times(0.0, 1.75, 0.5), ElementsAre(0.0, 0.5, 1.0, 1.5, 2.0));  // 3.5 steps, beyond the end
  // 1.4 / 0.4 is just below 3.5 in doubles.
  EXPECT_EQ(1.4 / 0.4, 3.4999999999999996);
  EXPECT_EQ(sample_times(0.0, 1.4, 0.4).size(), 4u);
}

TEST_F(Sampling, AReversedRangeHasNoSamplesAndAPointOne) {
  EXPECT_THAT(sample_times(10.0, 5.0, 1.0), IsEmpty());
  EXPECT_THAT(sample_times(10.0, 9.4, 1.0), IsEmpty());
  EXPECT_THAT(sample_times(7.0, 7.0, 1.0), ElementsAre(7.0));
  EXPECT_EQ(_sample_count(10.0, 5.0, 1.0), -4);
}

TEST_F(Sampling, AStepOfZeroFailsBeforeAnySample) {
  const host::Error error = error_of([&] { _sample_positions("|ball", 0.0, 1.0, 0.0, _make_slow_sampler("|ball")); });
  EXPECT_EQ(error.kind(), host::ErrorKind::zero_division);
  EXPECT_STREQ(error.what(), "float division by zero");
  EXPECT_THAT(recorder.log(), IsEmpty());
}

TEST_F(Sampling, ACountThatIsNoNumberOrTooLargeFails) {
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(error_of([] { _sample_count(0.0, std::nan(""), 1.0); }).kind(), host::ErrorKind::value);
  EXPECT_EQ(error_of([&] { _sample_count(0.0, infinity, 1.0); }).kind(), host::ErrorKind::overflow);
  EXPECT_EQ(error_of([] { _sample_count(0.0, 1e300, 1.0); }).kind(), host::ErrorKind::overflow);
}

TEST_F(Sampling, AnAbsurdCountIsRefusedBeforeAnySample) {
  fake.on_evaluation = [] { throw host::Error("sampled"); };
  const host::Error error = error_of([&] { _sample_positions("|ball", 0.0, 1e18, 1.0); });
  EXPECT_STREQ(error.what(), "more than 134217728 samples; shorten the playback range or lower the samples per frame");
  EXPECT_EQ(error.kind(), host::ErrorKind::overflow);
}

TEST_F(Sampling, AGivenSamplerIsUsedAsItIs) {
  const SamplerPtr sampler = _make_fast_sampler("|ball");
  recorder.clear();
  _sample_positions("|ball", 1.0, 2.0, 1.0, sampler);
  _sample_at_times("|ball", {5.0}, sampler);
  EXPECT_THAT(recorder.log(),
              ElementsAre("plug.translation_at(1.0)", "plug.translation_at(2.0)", "plug.translation_at(5.0)"));
}

TEST_F(Sampling, WithoutASamplerTheFastOneIsMade) {
  _sample_positions("|ball", 1.0, 2.0, 1.0);
  EXPECT_EQ(recorder.count("cmds.getAttr"), 1u);  // the check alone
  EXPECT_EQ(recorder.count("plug.translation_at"), 3u);
}

TEST_F(Sampling, WithoutAFastSamplerTheSlowQueryServes) {
  fake.refused = {"worldMatrix"};
  EXPECT_THAT(times_of(_sample_positions("|ball", 1.0, 2.0, 1.0)), ElementsAre(1.0, 2.0));
  EXPECT_THAT(times_of(_sample_at_times("|ball", {9.0})), ElementsAre(9.0));
  EXPECT_THAT(recorder.log(),
              ElementsAre("om.findPlug('|ball', 'worldMatrix')", "cmds.getAttr('|ball.worldMatrix[0]', time=1.0)",
                          "cmds.getAttr('|ball.worldMatrix[0]', time=2.0)", "om.findPlug('|ball', 'worldMatrix')",
                          "cmds.getAttr('|ball.worldMatrix[0]', time=9.0)"));
}

TEST_F(Sampling, TimesAreSampledInTheOrderGivenWithTheirDuplicates) {
  EXPECT_THAT(times_of(_sample_at_times("|ball", {3.0, 1.0, 3.0})), ElementsAre(3.0, 1.0, 3.0));
}

TEST_F(Sampling, TheFastSamplerIsToldWhichTimesComeSomeAtATimeAndBeforeItIsAsked) {
  const SamplerPtr sampler = _make_fast_sampler("|ball");
  fake.hints.clear();
  fake.evaluations = 0;
  _sample_positions("|ball", 1.0, 150.0, 1.0, sampler);
  ASSERT_EQ(fake.hints.size(), 3u);
  double expected = 1.0;
  for (const auto& hint : fake.hints) {
    EXPECT_EQ(hint.evaluations, static_cast<std::size_t>(expected) - 1);
    EXPECT_LE(hint.times.size(), kExpectedAtOnce);
    for (const double t : hint.times) EXPECT_EQ(t, expected++);
  }
  EXPECT_EQ(expected, 151.0);
  _sample_at_times("|ball", {3.0, 1.0, 3.0}, sampler);
  EXPECT_THAT(fake.hints.back().times, ElementsAre(3.0, 1.0, 3.0));
  EXPECT_EQ(fake.hints.back().evaluations, 150u);
}

TEST_F(Sampling, AHintIsNeverEmptyAndTheSlowQueryTakesNone) {
  _sample_positions("|ball", 10.0, 5.0, 1.0);
  _sample_at_times("|ball", {});
  _sample_positions("|ball", 1.0, 5.0, 1.0, _make_slow_sampler("|ball"));
  EXPECT_TRUE(fake.hints.empty());
}

TEST_F(Sampling, FailuresOfTheHostReachTheCaller) {
  EXPECT_THROW(_world_pos_at("|nobody", 1.0), host::Error);
  EXPECT_THROW(_sample_positions("|nobody", 1.0, 2.0, 1.0), host::Error);
  EXPECT_THROW(_sample_at_times("|nobody", {1.0}), host::Error);
  EXPECT_THROW(_keyframe_times("|nobody", 1.0, 2.0), host::Error);
}

TEST_F(Sampling, KeyTimesAreSortedAndOnlyExactDuplicatesMerged) {
  fake.node("ball").keys = {5.0000004, 1.0, 5.0, 1.0};
  EXPECT_THAT(_keyframe_times("|ball", 1.0, 5.0), ElementsAre(1.0, 5.0, 5.0000004));
  EXPECT_THAT(recorder.log(), ElementsAre("cmds.keyframe('|ball', q=True, timeChange=True)"));
}

TEST_F(Sampling, KeyTimesOfCurvesKeyedTogetherAndApartCountOnceEach) {
  fake.node("ball").keys = {1.0, 3.0, 5.0, 1.0, 3.0, 5.0, 2.0, 3.0, 1.0, 3.0, 5.0, 4.0};
  EXPECT_THAT(_keyframe_times("|ball", 1.0, 5.0), ElementsAre(1.0, 2.0, 3.0, 4.0, 5.0));
  fake.node("ball").keys = {1.0, 3.0, 1.0, 3.0, 1.0, 3.0};
  EXPECT_THAT(_keyframe_times("|ball", 1.0, 5.0), ElementsAre(1.0, 3.0));
}

TEST_F(Sampling, KeyTimesJustOutsideTheRangeCount) {
  fake.node("ball").keys = {10.0 - 0.0000005, 10.0 - 0.000002, 20.0 + 0.0000005, 20.0 + 0.000002};
  EXPECT_THAT(_keyframe_times("|ball", 10.0, 20.0), ElementsAre(10.0 - 0.0000005, 20.0 + 0.0000005));
}

TEST_F(Sampling, AnObjectWithoutKeysHasNoKeyTimes) { EXPECT_THAT(_keyframe_times("|ball", 1.0, 5.0), IsEmpty()); }

}  // namespace
}  // namespace vantorelix
