#include "engine/trails/nodes.h"

#include "host/error.h"
#include "tests/support/engine_test.h"
#include "tests/support/trail_scene.h"

namespace vantorelix {
namespace {

using NodesTest = support::EngineTest;

host::ErrorKind kind_of_source_error(const Settings& settings) {
  try {
    _source_of(settings);
  } catch (const host::Error& error) {
    return error.kind();
  }
  return host::ErrorKind::runtime;
}

TEST_F(NodesTest, AShortNameIsWhatFollowsTheLastBar) {
  EXPECT_EQ(_short_name("|arm|wrist"), "wrist");
  EXPECT_EQ(_short_name("wrist"), "wrist");
  EXPECT_EQ(_short_name("|"), "");
}

TEST_F(NodesTest, TheFirstShapeIsAFullPathAndItsAbsenceAnError) {
  support::add_trail(fake, "ball");
  EXPECT_EQ(_first_shape("vlx_ball_viz"), "|vantorelixs_grp|vlx_ball_viz|vlx_ball_vizShape");
  EXPECT_THROW(_first_shape("ball"), host::Error);
}

TEST_F(NodesTest, ASourceThatIsMissingOrNoNameIsAnErrorOfItsOwnKind) {
  Settings settings;
  EXPECT_EQ(kind_of_source_error(settings), host::ErrorKind::key);
  settings.set("source", 7);
  EXPECT_EQ(kind_of_source_error(settings), host::ErrorKind::type);
  settings.set("source", "|ball");
  EXPECT_EQ(_source_of(settings), "|ball");
}

}  // namespace
}  // namespace vantorelix
