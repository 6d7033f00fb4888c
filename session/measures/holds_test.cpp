#include "session/measures/holds.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantorelix::session {
namespace {

TEST(Holds, AreWhereAnObjectRestsForTwoFramesOrMore) {
  const std::vector<Vector> points = {{0, 0, 0},     {1, 0, 0}, {2, 0, 0}, {2.001, 0, 0},
                                      {2.001, 0, 0}, {3, 0, 0}, {3, 0, 0}, {4, 0, 0}};
  const auto holds = holds_of({points, 10.0, 1.0, 24.0});
  ASSERT_EQ(holds.size(), 1u);
  EXPECT_EQ(holds[0].first, 12.0);
  EXPECT_EQ(holds[0].last, 14.0);
}

TEST(Holds, AnObjectThatNeverMovesHasNone) {
  const std::vector<Vector> points(9, Vector{1, 2, 3});
  EXPECT_THAT(holds_of({points, 0.0, 1.0, 24.0}), testing::IsEmpty());
}

}  // namespace
}  // namespace vantorelix::session
