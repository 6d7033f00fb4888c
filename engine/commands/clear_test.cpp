#include "engine/commands/clear.h"

#include <gmock/gmock.h>

#include "engine/rebuild/callbacks.h"
#include "engine/trails/queries.h"
#include "host/error.h"
#include "tests/support/engine_test.h"
#include "tests/support/trail_scene.h"

namespace vantorelix {
namespace {

using ::testing::ElementsAre;

class ClearTest : public support::EngineTest {};

TEST_F(ClearTest, TrailsOutsideTheRegistryAndTheRootSurviveClearing) {
  support::add_trail(fake, "ball");
  fake.add("|moved_out|movedShape", "vantorelix");
  clear_trails();
  EXPECT_TRUE(_REGISTRY.empty());
  EXPECT_EQ(trail_count(), 1);
  EXPECT_TRUE(has_any_trail());
}

TEST_F(ClearTest, ClearingStopsTheQueueThenEmptiesTheRegistryThenDeletesTheRoot) {
  support::add_trail(fake, "ball");
  _ensure_callback();
  _PENDING = true;
  _WORK = std::make_shared<WorkRecord>();
  recorder.clear();
  clear_trails();
  EXPECT_THAT(
      recorder.log(),
      ElementsAre("om.MMessage.removeCallback(1)", "om.MMessage.removeCallback(2)", "om.MMessage.removeCallback(3)",
                  "cmds.objExists('vantorelixs_grp')", "cmds.delete('vantorelixs_grp')",
                  "cmds.inViewMessage(amg='All trails cleared.', pos='midCenter', fade=True, alpha=0.9)",
                  "print('[Vantorelix] All trails cleared.')"));
  EXPECT_FALSE(_CB_ID);
  EXPECT_FALSE(_PENDING);
  EXPECT_FALSE(_WORK);
}

TEST_F(ClearTest, ClearingAnEmptySceneStillSaysSo) {
  clear_trails();
  EXPECT_THAT(fake.messages, ElementsAre(host::Value("All trails cleared.")));
  EXPECT_EQ(recorder.count("cmds.delete("), 0u);
}

TEST_F(ClearTest, ARootThatCannotBeDeletedLeavesRegistryAndCallbacksGone) {
  support::add_trail(fake, "ball");
  _ensure_callback();
  recorder.fail_line("cmds.delete(");
  EXPECT_THROW(clear_trails(), host::Error);
  EXPECT_TRUE(_REGISTRY.empty());
  EXPECT_FALSE(_CB_ID);
  EXPECT_EQ(fake.messages.size(), 0u);
}

}  // namespace
}  // namespace vantorelix
