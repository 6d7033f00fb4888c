#include "engine/trails/queries.h"

#include <gmock/gmock.h>

#include "host/error.h"
#include "tests/support/engine_test.h"
#include "tests/support/trail_scene.h"

namespace vantorelix {
namespace {

using ::testing::ElementsAre;

class QueriesTest : public support::EngineTest {};

TEST_F(QueriesTest, ASceneWithoutTrailNodesHasNone) {
  EXPECT_FALSE(has_any_trail());
  EXPECT_EQ(trail_count(), 0);
  EXPECT_THAT(recorder.log(), ElementsAre("cmds.ls(type='vantorelix')", "cmds.ls(type='vantorelix')"));
}

TEST_F(QueriesTest, TrailsOutsideTheRegistryAndTheRootCount) {
  support::add_trail(fake, "ball");
  fake.add("|moved_out|movedShape", "vantorelix");
  EXPECT_TRUE(has_any_trail());
  EXPECT_EQ(trail_count(), 2);
}

TEST_F(QueriesTest, AFailedQueryReachesTheCaller) {
  recorder.fail_line("cmds.ls(");
  EXPECT_THROW(has_any_trail(), host::Error);
  EXPECT_THROW(trail_count(), host::Error);
}

}  // namespace
}  // namespace vantorelix
