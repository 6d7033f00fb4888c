#include <set>

#include "engine/commands/apply_preferences.h"
#include "engine/commands/create.h"
#include "engine/rebuild/callbacks.h"
#include "engine/rebuild/queue.h"
#include "engine/rebuild/triggers.h"
#include "tests/contract/contract_test.h"

namespace vantorelix::contract {
namespace {

// One trail, for the ball.
class RebuildContract : public ContractTest {
 protected:
  void SetUp() override {
    ContractTest::SetUp();
    host->select({"|rig|ball"});
    create_trail();
    log();
  }
  // The two messages that one edit of a key sends; the second finds a step on its way.
  static Lines edit() {
    return no_file_activity() + kClockRead +
           Lines{"cmds.about(batch=True)", "cmds.evalDeferred(_rebuild_step, lowestPriority=True)"} +
           no_file_activity() + kClockRead;
  }
  static Lines guards() { return no_file_activity() + Lines{"oma.MAnimControl.isPlaying()"} + kClockRead; }
  static Lines again() { return {"cmds.evalDeferred(_rebuild_step, lowestPriority=True)"}; }
  static Lines samples(const std::vector<std::string>& times) {
    Lines lines;
    for (const std::string& t : times) lines = lines + evaluation(t) + kClockRead;
    return lines;
  }
  static Lines both_exist() { return exists("|rig|ball") + exists("vlx_ball_viz"); }
};

TEST_P(RebuildContract, waits_for_the_debounce_then_rebuilds_in_one_step) {
  host->edit_ball();
  EXPECT_EQ(log(), edit());
  host->now() += 0.1;
  EXPECT_TRUE(host->run_idle_once());
  EXPECT_EQ(log(), guards() + again());
  host->now() += 0.125;
  EXPECT_TRUE(host->run_idle_once());
  EXPECT_EQ(log(), guards() + playback_range() + kClockRead + kClockRead + both_exist() + fast_sampler("|rig|ball") +
                       samples({"1.0", "2.0", "3.0", "4.0", "5.0"}) + key_times("|rig|ball") + samples({"1.0", "5.0"}) +
                       push("vlx_ball_viz", kBallShape, 5, 2) + frame_attributes("vlx_ball_viz", kBallShape) +
                       Lines{"cmds.refresh()"});
  EXPECT_FALSE(host->run_idle_once());
}

TEST_P(RebuildContract, waits_while_the_scene_plays_or_is_read) {
  host->edit_ball();
  host->now() += 1.0;
  log();
  host->set_playing(true);
  host->run_idle_once();
  EXPECT_EQ(log(), no_file_activity() + Lines{"oma.MAnimControl.isPlaying()"} + again());
  host->set_reading(true);
  host->run_idle_once();
  EXPECT_EQ(log(), Lines{"om.MFileIO.isReadingFile()"} + again());
  host->edit_ball();
  EXPECT_EQ(log(), Lines(2, "om.MFileIO.isReadingFile()"));
}

TEST_P(RebuildContract, drops_a_trail_whose_object_has_gone) {
  host->edit_ball();
  host->delete_ball();
  host->now() += 1.0;
  log();
  host->run_idle_once();
  EXPECT_EQ(log(), guards() + playback_range() + kClockRead + kClockRead + exists("|rig|ball") +
                       exists("vlx_ball_viz") + Lines{"cmds.delete('vlx_ball_viz')"} + Lines{"cmds.refresh()"});
}

// The nine fields of an item that the queue has not come to, works on, or is done with.
void expect_untouched(const WorkItem& it) {
  EXPECT_FALSE(it.sampler || it.times || it.ktimes);
  EXPECT_TRUE(it.pos->empty() && it.kpos->empty());
  EXPECT_EQ(it.i + it.ki, 0u);
}
void expect_in_order(const WorkItem& it) {
  EXPECT_EQ(_REGISTRY.at(it.viz), it.settings);
  EXPECT_EQ(it.pos->size(), it.i);
  EXPECT_EQ(it.kpos->size(), it.ki);
}
void expect_done(const WorkItem& it) {
  expect_in_order(it);
  EXPECT_TRUE(it.sampler);
  EXPECT_EQ(it.i, 5u);
  EXPECT_EQ(it.times->size(), 5u);
  EXPECT_EQ(it.ki, it.ktimes->size());
}

TEST_P(RebuildContract, shows_all_items_of_a_record_whole_wherever_the_work_is) {
  host->select({"|rig|ball", "|cube"});
  create_trail();
  host->edit_ball();
  host->now() += 1.0;
  host->advance_per_reading() = 0.003;  // a few samples a step
  std::shared_ptr<WorkRecord> record;
  std::set<std::size_t> seen;
  while (host->run_idle_once() && _PENDING) {
    record = _WORK;
    ASSERT_TRUE(record);
    ASSERT_EQ(record->items.size(), 2u);
    seen.insert(record->k);
    for (std::size_t n = 0; n < 2; ++n) {
      const auto it = record->items.at(n);
      n < record->k ? expect_done(*it) : n == record->k ? expect_in_order(*it) : expect_untouched(*it);
    }
  }
  EXPECT_THAT(seen, testing::ElementsAre(0u, 1u));
  EXPECT_EQ(record->k, 2u);
  for (std::size_t n = 0; n < 2; ++n) expect_done(*record->items.at(n));
}

TEST_P(RebuildContract, an_item_can_be_read_and_finished_long_after_its_record) {
  host->edit_ball();
  host->now() += 1.0;
  host->advance_per_reading() = 0.003;
  host->run_idle_once();
  const auto it = _WORK->items.at(0);
  while (host->run_idle_once()) {
  }
  free_discarded_items(100);
  expect_done(*it);
  log();
  WorkRecord work;
  work.start = 1.0;
  _finish_trail(*it, work);
  EXPECT_EQ(log(), push("vlx_ball_viz", kBallShape, 5, 2) + frame_attributes("vlx_ball_viz", kBallShape));
}

TEST_P(RebuildContract, names_the_trail_that_fails_and_goes_on) {
  expected_warnings = {
      "[Vantorelix] rebuild fail vlx_ball_viz: injected failure at call 29: cmds.keyframe('|rig|ball', "
      "q=True, timeChange=True)"};
  host->edit_ball();
  host->now() += 1.0;
  recorder->fail_line("cmds.keyframe(");
  log();
  host->run_idle_once();
  const Lines lines = log();
  const Lines end(lines.end() - 2, lines.end());
  EXPECT_THAT(end, testing::ElementsAre(testing::StartsWith("cmds.warning("), "cmds.refresh()"));
}

TEST_P(RebuildContract, rebuilds_everything_at_once_without_looking_at_the_clock) {
  _rebuild_all_sync();
  const Lines dense = evaluation("1.0") + evaluation("2.0") + evaluation("3.0") + evaluation("4.0") + evaluation("5.0");
  EXPECT_EQ(log(), both_exist() + playback_range() + fast_sampler("|rig|ball") + dense + key_times("|rig|ball") +
                       evaluation("1.0") + evaluation("5.0") + push("vlx_ball_viz", kBallShape, 5, 2) +
                       Lines{"cmds.playbackOptions(q=True, min=True)"} + frame_attributes("vlx_ball_viz", kBallShape));
}

TEST_P(RebuildContract, installs_callbacks_once_and_removes_them_in_order) {
  _ensure_callback();
  EXPECT_EQ(log(), Lines{}) << "creation has installed them";
  _remove_callback();
  EXPECT_EQ(log(), Lines(3, "om.MMessage.removeCallback(...)"));
  host->edit_ball();
  EXPECT_EQ(log(), Lines{}) << "nobody listens";
  _ensure_callback();
  EXPECT_EQ(log(), (Lines{"oma.MAnimMessage.addAnimCurveEditedCallback(_on_anim_edit)",
                          "oma.MAnimMessage.addAnimKeyframeEditedCallback(_on_anim_edit)",
                          "om.MDGMessage.addNodeRemovedCallback(_on_anim_edit, 'animCurve')"}));
}

TEST_P(RebuildContract, applies_preferences_to_every_viz_node_then_the_density) {
  apply_prefs_to_existing_trails(true);
  const std::string shape = "vlx_ball_vizShape";
  const Lines preferences = option_missing("lineWidth") + option_missing("pointSize") + option_missing("showLine") +
                            option_missing("showDots") + option_missing("xrayMode") + option_missing("colorMode");
  const Lines display = set_attribute(shape, "lineWidth", "2.5") + set_attribute(shape, "pointSize", "6.0") +
                        set_attribute(shape, "showLine", "True") + set_attribute(shape, "showDots", "True") +
                        set_attribute(shape, "xrayMode", "True") + set_attribute(shape, "colorMode", "0");
  const Lines density =
      option_missing("samplesPerFrame") + shapes_of("vlx_ball_viz") + set_attribute(kBallShape, "frameStep", "1.0") +
      Lines{"cmds.playbackOptions(q=True, min=True)"} + set_attribute(kBallShape, "startFrame", "1.0");
  EXPECT_EQ(log(), Lines{"cmds.ls(type='vantorelix')"} + preferences + display + density + no_file_activity() +
                       kClockRead + Lines{"cmds.about(batch=True)"} + again() + Lines{"cmds.refresh()"});
}

VANTORELIX_OVER_EVERY_HOST(RebuildContract);

}  // namespace
}  // namespace vantorelix::contract
