#include "engine/rebuild/triggers.h"

#include <gmock/gmock.h>

#include "host/error.h"
#include "tests/support/engine_test.h"
#include "tests/support/trail_scene.h"

namespace vantorelix {
namespace {

using support::Lines;
using support::pushed;
using support::together;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

const Lines kFileGuard = {"om.MFileIO.isReadingFile()", "om.MFileIO.isWritingFile()", "om.MFileIO.isOpeningFile()",
                          "om.MFileIO.isNewingFile()"};
const std::string kDeferral = "cmds.evalDeferred(_rebuild_step, lowestPriority=True)";

class TriggersTest : public support::EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    fake.range_last = 3.0;
    ball = support::add_trail(fake, "ball");
    fake.node("|ball").keys = {1.0, 3.0};
  }
  void break_evaluation_of(const std::string& name) {
    fake.node(name).motion = [](double) -> Vector { throw host::Error("no such joint"); };
  }
  std::shared_ptr<Settings> ball;
};

// --- scheduling ------------------------------------------------------------------------------------------------

TEST_F(TriggersTest, AnEditIsStampedAndQueuesOneStep) {
  fake.now = 50.0;
  _schedule_rebuild();
  EXPECT_EQ(recorder.log(), together({kFileGuard, {"time.time()", "cmds.about(batch=True)", kDeferral}}));
  EXPECT_EQ(_GEN, 1);
  EXPECT_EQ(_LAST_EDIT, 50.0);
  EXPECT_TRUE(_PENDING);
}

TEST_F(TriggersTest, WithoutTrailsNothingChanges) {
  _REGISTRY.clear();
  _schedule_rebuild();
  EXPECT_THAT(recorder.log(), IsEmpty());
  EXPECT_EQ(_GEN, 0);
  EXPECT_EQ(_LAST_EDIT, 0.0);
  EXPECT_FALSE(_PENDING);
}

TEST_F(TriggersTest, DuringFileInputAndOutputNothingChanges) {
  for (bool* busy : {&fake.reading, &fake.writing, &fake.opening, &fake.newing}) {
    *busy = true;
    _schedule_rebuild();
    *busy = false;
  }
  EXPECT_EQ(_GEN, 0);
  EXPECT_FALSE(_PENDING);
  EXPECT_EQ(recorder.count("time.time()"), 0u);
}

TEST_F(TriggersTest, ThreeEditsInARowQueueOneStepAndKeepTheTimeOfTheLast) {
  for (const double t : {50.0, 51.0, 52.0}) {
    fake.now = t;
    _schedule_rebuild();
  }
  EXPECT_EQ(_GEN, 3);
  EXPECT_EQ(_LAST_EDIT, 52.0);
  EXPECT_TRUE(_PENDING);
  EXPECT_THAT(fake.deferred, SizeIs(1));
  EXPECT_EQ(recorder.count("cmds.about("), 1u);
}

TEST_F(TriggersTest, InBatchModeTheTrailsAreRebuiltAtOnce) {
  fake.batch = true;
  _schedule_rebuild();
  EXPECT_THAT(*pushed(fake, "ball", "points"), SizeIs(3));
  EXPECT_FALSE(_PENDING);
  EXPECT_THAT(fake.deferred, IsEmpty());
}

TEST_F(TriggersTest, InBatchModeAPendingStepIsLeftToItself) {
  fake.batch = true;
  _PENDING = true;
  _schedule_rebuild();
  EXPECT_EQ(pushed(fake, "ball", "points"), nullptr);
  EXPECT_EQ(_GEN, 1);
}

TEST_F(TriggersTest, AFailedBatchQueryOrBatchRebuildGoesToTheQueue) {
  recorder.fail_line("cmds.about(");
  _schedule_rebuild();
  EXPECT_TRUE(_PENDING);
  recorder.stop_failing();

  _PENDING = false;
  fake.batch = true;
  break_evaluation_of("|ball");
  recorder.fail_line("cmds.warning(");  // what makes the rebuild itself fail
  _schedule_rebuild();
  EXPECT_TRUE(_PENDING);
  EXPECT_THAT(fake.deferred, SizeIs(2));
}

TEST_F(TriggersTest, WhenTheHostCannotDeferTheTrailsAreRebuiltAtOnce) {
  recorder.fail_line("cmds.evalDeferred(");
  _schedule_rebuild();
  EXPECT_FALSE(_PENDING);
  EXPECT_THAT(*pushed(fake, "ball", "points"), SizeIs(3));
}

TEST_F(TriggersTest, AnErrorOfThatFallbackLeavesTheCall) {
  recorder.fail_line("cmds.evalDeferred(");
  recorder.fail_line("cmds.warning(");
  break_evaluation_of("|ball");
  EXPECT_THROW(_schedule_rebuild(), host::Error);
  EXPECT_FALSE(_PENDING);
  EXPECT_FALSE(_REBUILDING);
}

// --- the rebuild in one go -------------------------------------------------------------------------------------

TEST_F(TriggersTest, TheSynchronousRebuildMakesTheseCallsForEachTrail) {
  support::add_trail(fake, "cube", 2);
  _rebuild_all_sync();
  const Lines range = {"cmds.playbackOptions(q=True, min=True)", "cmds.playbackOptions(q=True, max=True)"};
  EXPECT_EQ(recorder.log(), together({{"cmds.objExists('|ball')", "cmds.objExists('vlx_ball_viz')"},
                                      range,
                                      support::fast_sampler_lines("ball"),
                                      {"plug.translation_at(1.0)", "plug.translation_at(2.0)",
                                       "plug.translation_at(3.0)", "cmds.keyframe('|ball', q=True, timeChange=True)",
                                       "plug.translation_at(1.0)", "plug.translation_at(3.0)"},
                                      support::push_lines("ball", 3, 2),
                                      {range[0]},
                                      support::frame_attr_lines("ball", "1.0", "1.0"),
                                      {"cmds.objExists('|cube')", "cmds.objExists('vlx_cube_viz')"},
                                      range,
                                      support::fast_sampler_lines("cube"),
                                      {"plug.translation_at(1.0)", "plug.translation_at(1.5)",
                                       "plug.translation_at(2.0)", "plug.translation_at(2.5)",
                                       "plug.translation_at(3.0)", "cmds.keyframe('|cube', q=True, timeChange=True)"},
                                      support::push_lines("cube", 5, 0),
                                      {range[0]},
                                      support::frame_attr_lines("cube", "1.0", "0.5")}));
}

TEST_F(TriggersTest, ARebuildWithinARebuildReturnsAtOnce) {
  bool nested = false;
  fake.on_evaluation = [&] {
    EXPECT_TRUE(_REBUILDING);
    if (nested) return;
    nested = true;
    const std::size_t before = recorder.call_count();
    _rebuild_all_sync();
    EXPECT_EQ(recorder.call_count(), before);
  };
  _rebuild_all_sync();
  EXPECT_TRUE(nested);
  EXPECT_FALSE(_REBUILDING);
}

TEST_F(TriggersTest, TheMarkOfARunningRebuildGoesWhateverEndsIt) {
  break_evaluation_of("|ball");
  recorder.fail_line("cmds.warning(");
  EXPECT_THROW(_rebuild_all_sync(), host::Error);
  EXPECT_FALSE(_REBUILDING);
  recorder.fail_line("cmds.objExists(", 0, support::Failure::interrupt);
  EXPECT_THROW(_rebuild_all_sync(), host::Interrupt);
  EXPECT_FALSE(_REBUILDING);
}

TEST_F(TriggersTest, ATrailThatFailsIsReportedAndTheOthersAreRebuilt) {
  support::add_trail(fake, "cube");
  support::add_trail(fake, "cone");
  break_evaluation_of("|ball");
  _REGISTRY.at("vlx_cube_viz")->erase("samples_per_frame");
  expect_warning("[Vantorelix] rebuild fail vlx_ball_viz: no such joint");
  expect_warning("[Vantorelix] rebuild fail vlx_cube_viz: 'samples_per_frame'");
  _rebuild_all();
  EXPECT_THAT(*pushed(fake, "cone", "points"), SizeIs(3));
}

TEST_F(TriggersTest, TheQueueIsUntouchedByTheSynchronousRebuild) {
  _PENDING = true;
  _GEN = 4;
  const auto work = _WORK = std::make_shared<WorkRecord>();
  _rebuild_all_sync();
  EXPECT_TRUE(_PENDING);
  EXPECT_EQ(_GEN, 4);
  EXPECT_EQ(_WORK, work);
}

TEST_F(TriggersTest, ATrailWithoutItsSourceLosesNodeAndEntrySilently) {
  fake.remove("|ball");
  _rebuild_one("vlx_ball_viz", ball);
  EXPECT_THAT(recorder.log(),
              ElementsAre("cmds.objExists('|ball')", "cmds.objExists('vlx_ball_viz')", "cmds.delete('vlx_ball_viz')"));
  EXPECT_TRUE(_REGISTRY.empty());
}

TEST_F(TriggersTest, ATrailWithoutItsNodeLosesItsEntrySilently) {
  fake.remove("vlx_ball_viz");
  _REGISTRY.clear();  // a missing entry is not an error
  _rebuild_one("vlx_ball_viz", ball);
  EXPECT_THAT(recorder.log(), ElementsAre("cmds.objExists('|ball')", "cmds.objExists('vlx_ball_viz')",
                                          "cmds.objExists('vlx_ball_viz')"));
}

TEST_F(TriggersTest, ATrailThatCannotBeSampledKeepsItsNodeAndHasNoReference) {
  fake.range_last = 1.0;
  _rebuild_one("vlx_ball_viz", ball);
  EXPECT_THAT(support::viz_shape(fake, "ball").arrays, IsEmpty());
  EXPECT_THAT(support::viz_shape(fake, "ball").attributes, IsEmpty());
  EXPECT_TRUE(ball->get("ref").is_none());
}

TEST_F(TriggersTest, TheFirstReferenceIsKeptForGood) {
  _rebuild_one("vlx_ball_viz", ball);
  const host::Value first = ball->get("ref");
  EXPECT_EQ(first, host::Value::list({1.0}));
  fake.motion = [](const std::string&, double t) { return Vector{10 * t, 0, 0}; };
  _rebuild_one("vlx_ball_viz", ball);
  EXPECT_EQ(*ball->get("ref").as_list(), *first.as_list());  // the same list, not an equal one
  EXPECT_EQ(pushed(fake, "ball", "colors")->front(), (Colour{1, 0, 0}));
}

TEST_F(TriggersTest, AReferenceIsKeptOnlyWhereThereIsNoneAndItHoldsSomething) {
  _keep_first_ref(*ball, host::Value::list({}));
  EXPECT_TRUE(ball->get("ref").is_none());
  _keep_first_ref(*ball, host::Value::list({0.0}));
  EXPECT_EQ(ball->get("ref"), host::Value::list({0.0}));
  _keep_first_ref(*ball, host::Value::list({2.0}));
  EXPECT_EQ(ball->get("ref"), host::Value::list({0.0}));
}

TEST_F(TriggersTest, AReferenceThatWasDeletedIsMadeAgain) {
  ball->erase("ref");
  _rebuild_one("vlx_ball_viz", ball);
  EXPECT_EQ(ball->get("ref"), host::Value::list({1.0}));
}

// --- guards ----------------------------------------------------------------------------------------------------

TEST_F(TriggersTest, TheFileGuardStopsAtTheFirstTrueAnswer) {
  EXPECT_FALSE(_is_file_io());
  EXPECT_EQ(recorder.log(), kFileGuard);
  recorder.clear();
  fake.writing = true;
  EXPECT_TRUE(_is_file_io());
  EXPECT_EQ(recorder.log(), Lines(kFileGuard.begin(), kFileGuard.begin() + 2));
}

TEST_F(TriggersTest, GuardsThatCannotAskAnswerNo) {
  fake.playing = fake.newing = true;
  EXPECT_TRUE(_is_playing());
  recorder.fail_line("oma.");
  recorder.fail_line("om.MFileIO.isOpeningFile");
  EXPECT_FALSE(_is_playing());
  EXPECT_FALSE(_is_file_io());
}

TEST_F(TriggersTest, GuardsLetAnInterruptThrough) {
  recorder.fail_line("oma.", 0, support::Failure::interrupt);
  recorder.fail_line("om.", 0, support::Failure::interrupt);
  EXPECT_THROW(_is_playing(), host::Interrupt);
  EXPECT_THROW(_is_file_io(), host::Interrupt);
}

}  // namespace
}  // namespace vantorelix
