#include "engine/rebuild/queue.h"

#include <gmock/gmock.h>

#include "engine/rebuild/callbacks.h"
#include "engine/rebuild/triggers.h"
#include "host/error.h"
#include "tests/support/engine_test.h"
#include "tests/support/trail_scene.h"

namespace vantorelix {
namespace {

using support::Lines;
using support::pushed;
using support::timed_samples;
using support::together;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

const Lines kGuards = {"om.MFileIO.isReadingFile()", "om.MFileIO.isWritingFile()", "om.MFileIO.isOpeningFile()",
                       "om.MFileIO.isNewingFile()", "oma.MAnimControl.isPlaying()"};
const Lines kDebounce = {"time.time()"};
const Lines kRange = {"cmds.playbackOptions(q=True, min=True)", "cmds.playbackOptions(q=True, max=True)"};
const Lines kDeadlineAndFirstTest = {"time.time()", "time.time()"};
const Lines kNextTest = {"time.time()"};
const Lines kKeys = {"cmds.keyframe('|ball', q=True, timeChange=True)"};
const Lines kDeferral = {"cmds.evalDeferred(_rebuild_step, lowestPriority=True)"};
const Lines kRefresh = {"cmds.refresh()"};

Lines existence(const std::string& name) {
  return {"cmds.objExists('|" + name + "')", "cmds.objExists('vlx_" + name + "_viz')"};
}

// A trail of a ball with two keys over frames 1 to 3; a step is queued and the last edit is long ago.
class QueueTest : public support::EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    fake.range_last = 3.0;
    ball = support::add_trail(fake, "ball");
    fake.node("|ball").keys = {1.0, 3.0};
    _PENDING = true;
  }
  void break_evaluation_of(const std::string& name) {
    fake.node(name).motion = [](double) -> Vector { throw host::Error("no such joint"); };
  }
  // The step did no work, and queued one successor.
  void expect_waited() {
    EXPECT_THAT(fake.deferred, SizeIs(1));
    EXPECT_EQ(fake.evaluations, 0u);
    EXPECT_FALSE(_WORK);
    EXPECT_TRUE(_PENDING);
  }
  void expect_idle() {
    EXPECT_FALSE(_WORK);
    EXPECT_FALSE(_PENDING);
    EXPECT_THAT(fake.deferred, IsEmpty());
  }
  std::size_t planned_samples(const host::Value& density) {
    ball->set("samples_per_frame", density);
    fake.advance_per_evaluation = 1.0;  // one sample a step
    ++_GEN;
    _rebuild_step();
    return _WORK->items.at(0)->times->size();
  }
  std::shared_ptr<Settings> ball;
};

// --- the calls -------------------------------------------------------------------------------------------------

TEST_F(QueueTest, AStepFromStartToFinishMakesTheseCalls) {
  _rebuild_step();
  EXPECT_EQ(recorder.log(), together({kGuards, kDebounce, kRange, kDeadlineAndFirstTest, existence("ball"),
                                      support::fast_sampler_lines("ball"), timed_samples({"1.0", "2.0", "3.0"}), kKeys,
                                      timed_samples({"1.0", "3.0"}), support::push_lines("ball", 3, 2),
                                      support::frame_attr_lines("ball", "1.0", "1.0"), kRefresh}));
  expect_idle();
}

TEST_F(QueueTest, StepsThatStopAmongSamplesAndKeysResumeWithTheseCalls) {
  fake.advance_per_evaluation = 0.003;  // the check of the sampler takes two of the three that fit a step
  _rebuild_step();
  EXPECT_EQ(recorder.log(), together({kGuards, kDebounce, kRange, kDeadlineAndFirstTest, existence("ball"),
                                      support::fast_sampler_lines("ball"), timed_samples({"1.0"}), kDeferral}));
  recorder.clear();
  _rebuild_step();
  EXPECT_EQ(recorder.log(), together({kGuards, kDebounce, kDeadlineAndFirstTest, existence("ball"),
                                      timed_samples({"2.0", "3.0"}), kKeys, timed_samples({"1.0"}), kDeferral}));
  recorder.clear();
  _rebuild_step();
  EXPECT_EQ(recorder.log(),
            together({kGuards, kDebounce, kDeadlineAndFirstTest, existence("ball"), timed_samples({"3.0"}),
                      support::push_lines("ball", 3, 2), support::frame_attr_lines("ball", "1.0", "1.0"), kRefresh}));
}

TEST_F(QueueTest, EachStepHintsAtWhatIsLeftOfTheSamplesAndThenOfTheKeys) {
  fake.advance_per_evaluation = 0.003;  // as above
  const auto hints = [this] {
    _rebuild_step();
    std::vector<std::vector<double>> times;
    for (const auto& hint : std::exchange(fake.hints, {})) times.push_back(hint.times);
    return times;
  };
  EXPECT_THAT(hints(), ElementsAre(std::vector{1.0, 2.0, 3.0}));
  EXPECT_THAT(hints(), ElementsAre(std::vector{2.0, 3.0}, std::vector{1.0, 3.0}));
  EXPECT_THAT(hints(), ElementsAre(std::vector{3.0}));
}

TEST_F(QueueTest, ADroppedTrailMakesTheseCallsAndNoWarning) {
  support::add_trail(fake, "cube");
  fake.remove("|ball");
  _REGISTRY.at("vlx_cube_viz")->erase("source");
  expect_warning("[Vantorelix] rebuild fail vlx_cube_viz: 'source'");
  _rebuild_step();
  EXPECT_EQ(recorder.log(), together({kGuards,
                                      kDebounce,
                                      kRange,
                                      kDeadlineAndFirstTest,
                                      existence("ball"),
                                      {"cmds.delete('vlx_ball_viz')"},
                                      kNextTest,
                                      {"cmds.warning(\"[Vantorelix] rebuild fail vlx_cube_viz: 'source'\")"},
                                      kRefresh}));
  EXPECT_FALSE(_REGISTRY.contains("vlx_ball_viz"));
}

TEST_F(QueueTest, AFailingTrailIsReportedOnceAndTheNextOneFollowsInTheSameStep) {
  support::add_trail(fake, "cube");
  break_evaluation_of("|ball");
  expect_warning("[Vantorelix] rebuild fail vlx_ball_viz: no such joint");
  _rebuild_step();
  EXPECT_EQ(pushed(fake, "ball", "points"), nullptr);
  EXPECT_THAT(*pushed(fake, "cube", "points"), SizeIs(3));
  EXPECT_EQ(recorder.count("cmds.warning("), 1u);
  expect_idle();
}

// --- stopping and waiting --------------------------------------------------------------------------------------

TEST_F(QueueTest, AStepThatFindsNothingPendingDoesNothing) {
  _PENDING = false;
  const auto work = _WORK = std::make_shared<WorkRecord>();
  _rebuild_step();
  EXPECT_THAT(recorder.log(), IsEmpty());
  EXPECT_EQ(_WORK, work);
}

TEST_F(QueueTest, AnEmptyRegistryStopsTheQueue) {
  _REGISTRY.clear();
  _WORK = std::make_shared<WorkRecord>();
  _rebuild_step();
  EXPECT_THAT(recorder.log(), IsEmpty());
  expect_idle();
}

TEST_F(QueueTest, WorkBeginsExactlyWhenTheDebounceHasPassed) {
  _LAST_EDIT = 0.0;
  fake.now = 0.199;
  _rebuild_step();
  expect_waited();
  EXPECT_EQ(recorder.log(), together({kGuards, kDebounce, kDeferral}));
  fake.now = 0.2;
  _rebuild_step();
  EXPECT_THAT(*pushed(fake, "ball", "points"), SizeIs(3));
}

TEST_F(QueueTest, AStepWaitsWhilePlaybackRuns) {
  fake.playing = true;
  _rebuild_step();
  expect_waited();
  EXPECT_EQ(recorder.log(), together({kGuards, kDeferral}));
  fake.playing = false;
  EXPECT_EQ(fake.run_all_deferred(), 1u);
  expect_idle();
}

TEST_F(QueueTest, AStepWaitsWhileAFileIsRead) {
  fake.reading = true;
  _rebuild_step();
  expect_waited();
  EXPECT_EQ(recorder.log(), together({{kGuards[0]}, kDeferral}));
}

TEST_F(QueueTest, AFailedDeferralStopsTheQueueWhetherItWaitedOrWorked) {
  recorder.fail_line("cmds.evalDeferred(");
  fake.playing = true;
  _rebuild_step();
  expect_idle();

  fake.playing = false;
  fake.advance_per_evaluation = 1.0;
  _PENDING = true;
  _rebuild_step();
  EXPECT_GT(fake.evaluations, 0u);
  expect_idle();
}

TEST_F(QueueTest, AFailedRefreshIsIgnored) {
  recorder.fail_line("cmds.refresh(");
  _rebuild_step();
  expect_idle();
}

TEST_F(QueueTest, AFailedWarningIsIgnored) {
  break_evaluation_of("|ball");
  recorder.fail_line("cmds.warning(");
  _rebuild_step();
  expect_idle();
}

TEST_F(QueueTest, AnErrorOutsideTheTrailsLeavesTheStepWithTheQueueStuckUntilTheCallbacksAreRemoved) {
  recorder.fail_line("cmds.playbackOptions(q=True, max=True)");
  EXPECT_THROW(_rebuild_step(), host::Error);
  EXPECT_TRUE(_PENDING);
  EXPECT_FALSE(_WORK);
  EXPECT_THAT(fake.deferred, IsEmpty());
  recorder.stop_failing();
  _schedule_rebuild();
  EXPECT_THAT(fake.deferred, IsEmpty());
  _remove_callback();
  _schedule_rebuild();
  EXPECT_THAT(fake.deferred, SizeIs(1));
}

TEST_F(QueueTest, AnInterruptWhileSamplingLeavesTheStep) {
  recorder.fail_line("plug.translation_at(2.0)", 0, support::Failure::interrupt);
  EXPECT_THROW(_rebuild_step(), host::Interrupt);
  EXPECT_EQ(_WORK->k, 0u);
  EXPECT_EQ(_WORK->items.at(0)->i, 1u);
}

// --- planning --------------------------------------------------------------------------------------------------

TEST_F(QueueTest, DensityIsTruncatedAndAtLeastOne) {
  for (const host::Value& density : {host::Value(0), host::Value(-2), host::Value(0.9)}) {
    EXPECT_EQ(planned_samples(density), 3u) << density.text();
  }
  EXPECT_EQ(planned_samples(2.7), 5u);
}

TEST_F(QueueTest, TimesAreCountedFromTheStart) {
  fake.range_last = 10.0;
  EXPECT_EQ(planned_samples(2), 19u);
  const SampleTimes& times = *_WORK->items.at(0)->times;
  EXPECT_EQ(times[0], 1.0);
  EXPECT_EQ(times[1], 1.5);
  EXPECT_EQ(times[18], 10.0);
  planned_samples(3);
  EXPECT_EQ((*_WORK->items.at(0)->times)[7], 1.0 + 7 * (1.0 / 3));  // a running sum would miss this one
}

TEST_F(QueueTest, ARangeOfOneFrameFinishesWithoutTouchingTheNode) {
  fake.range_last = 1.0;
  _rebuild_step();
  EXPECT_EQ(recorder.count("plug.setMObject("), 0u);
  EXPECT_EQ(recorder.count("cmds.setAttr("), 0u);
  expect_idle();
}

TEST_F(QueueTest, AReversedRangeHasNoSamples) {
  fake.range_last = -5.0;
  _rebuild_step();
  EXPECT_EQ(recorder.count("plug.translation_at("), 1u);  // the check of the sampler
  expect_idle();
}

TEST_F(QueueTest, AnAbsurdRangeFailsItsTrailOnly) {
  fake.range_last = 1e12;
  expect_warning(
      "[Vantorelix] rebuild fail vlx_ball_viz: more than 134217728 samples; shorten the playback range or lower the "
      "samples per frame");
  _rebuild_step();
  expect_idle();
}

TEST_F(QueueTest, WithoutAFastSamplerTheSlowQueryIsUsedAndTheItemHoldsNone) {
  fake.context_offset = {1, 0, 0};
  fake.advance_per_evaluation = 1.0;
  _rebuild_step();
  EXPECT_FALSE(_WORK->items.at(0)->sampler);
  EXPECT_EQ(recorder.count("cmds.getAttr('|ball.worldMatrix[0]', time="), 2u);
}

TEST_F(QueueTest, ATrailWithoutADensityFailsAtPlanning) {
  ball->erase("samples_per_frame");
  expect_warning("[Vantorelix] rebuild fail vlx_ball_viz: 'samples_per_frame'");
  _rebuild_step();
  EXPECT_EQ(fake.evaluations, 0u);
}

// --- generations -----------------------------------------------------------------------------------------------

TEST_F(QueueTest, AnEditHalfwayStartsAgainFromTheFirstTrail) {
  for (const char* name : {"b", "c", "d", "e"}) support::add_trail(fake, name);
  fake.advance_per_evaluation = 0.003;
  while (!_WORK || _WORK->k < 2 || _WORK->items.at(2)->i == 0) _rebuild_step();
  const auto stale = _WORK;
  _schedule_rebuild();
  fake.now += 1.0;
  _rebuild_step();
  EXPECT_NE(_WORK, stale);
  EXPECT_EQ(_WORK->gen, 1);
  EXPECT_EQ(_WORK->k, 0u);
  EXPECT_EQ(_WORK->items.at(0)->i, 1u);
  EXPECT_EQ(_WORK->items.at(2)->i, 0u);
}

TEST_F(QueueTest, AnEditInTheLastSampleKeepsTheQueueGoing) {
  fake.on_evaluation = [&] {
    if (fake.evaluations == 7) _schedule_rebuild();  // two of the check, three samples, two keys
  };
  _rebuild_step();
  EXPECT_FALSE(_WORK);
  EXPECT_TRUE(_PENDING);
  EXPECT_THAT(fake.deferred, SizeIs(1));
  EXPECT_EQ(fake.refreshes, 0u);
}

TEST_F(QueueTest, AStaleChainOfStepsEndsByItselfWhenTheOtherOneFinishes) {
  fake.advance_per_evaluation = 0.003;
  fake.deferred = {_REBUILD_STEP, _REBUILD_STEP};
  fake.run_all_deferred();
  EXPECT_THAT(*pushed(fake, "ball", "points"), SizeIs(3));
  EXPECT_EQ(fake.refreshes, 1u);
  expect_idle();
}

// --- finishing -------------------------------------------------------------------------------------------------

TEST_F(QueueTest, AFinishedTrailSharesItsPositionsWithTheNode) {
  WorkItem it;
  it.viz = "vlx_ball_viz";
  it.settings = ball;
  *it.pos = {{1, 0, 0}, {2, 0, 0}};
  _finish_trail(it, WorkRecord{});
  EXPECT_EQ(pushed(fake, "ball", "points"), it.pos);
  EXPECT_THAT(*pushed(fake, "ball", "keyTimes"), IsEmpty());  // key times that were never read
}

TEST_F(QueueTest, AFinishedTrailWithoutADensityCountsAsOneSampleAFrame) {
  WorkItem it;
  it.viz = "vlx_ball_viz";
  it.settings = ball;
  ball->erase("samples_per_frame");
  *it.pos = {{1, 0, 0}, {2, 0, 0}};
  _finish_trail(it, WorkRecord{0, {}, 0, 7.0, 8.0});
  EXPECT_EQ(support::viz_shape(fake, "ball").attributes["frameStep"], host::Value(1.0));
  EXPECT_EQ(support::viz_shape(fake, "ball").attributes["startFrame"], host::Value(7.0));
}

TEST_F(QueueTest, TheFirstReferenceIsStoredAndLaterRebuildsPassItBack) {
  _rebuild_step();
  const host::Value first = ball->get("ref");
  EXPECT_EQ(first, host::Value::list({1.0}));
  fake.motion = [](const std::string&, double t) { return Vector{10 * t, 0, 0}; };
  _schedule_rebuild();
  fake.now += 1.0;
  fake.run_all_deferred();
  EXPECT_EQ(*ball->get("ref").as_list(), *first.as_list());
  EXPECT_EQ(pushed(fake, "ball", "colors")->front(), (Colour{1, 0, 0}));
}

}  // namespace
}  // namespace vantorelix
