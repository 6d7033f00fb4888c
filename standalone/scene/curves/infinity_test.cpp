#include "standalone/scene/curves/infinity.h"

#include <gtest/gtest.h>

namespace vantorelix::standalone {
namespace {

TEST(Infinity, CyclesEnterAtTheirStartAfterTheKeysAndAtTheirEndBefore) {
  const Repetition after = repetition(27.0, 10.0, 20.0, Infinity::cycle);
  EXPECT_EQ(after.frame, 17.0);
  EXPECT_EQ(after.number, 1.0);
  const Repetition before = repetition(-3.0, 10.0, 20.0, Infinity::cycle_offset);
  EXPECT_EQ(before.frame, 17.0);
  EXPECT_EQ(before.number, -2.0);
}

TEST(Infinity, OscillationTurnsRoundInEverySecondRepetition) {
  EXPECT_EQ(repetition(23.0, 10.0, 20.0, Infinity::oscillate).frame, 17.0);
  EXPECT_EQ(repetition(33.0, 10.0, 20.0, Infinity::oscillate).frame, 13.0);
  EXPECT_EQ(repetition(7.0, 10.0, 20.0, Infinity::oscillate).frame, 13.0);
  EXPECT_EQ(repetition(-3.0, 10.0, 20.0, Infinity::oscillate).frame, 17.0);
}

TEST(Infinity, SeamsBelongToTheRepetitionFartherFromTheKeys) {
  EXPECT_EQ(repetition(30.0, 10.0, 20.0, Infinity::cycle).frame, 10.0);
  EXPECT_EQ(repetition(30.0, 10.0, 20.0, Infinity::cycle).number, 2.0);
  EXPECT_EQ(repetition(0.0, 10.0, 20.0, Infinity::cycle).frame, 20.0);
  EXPECT_EQ(repetition(0.0, 10.0, 20.0, Infinity::cycle).number, -2.0);
}

TEST(Infinity, FarFramesAreExactWhereWholeNumbersAre) {
  const double periods = 1e12;
  const Repetition after = repetition(24.0 + 23.0 * periods + 5.0, 1.0, 24.0, Infinity::cycle);
  EXPECT_EQ(after.frame, 6.0);
  EXPECT_EQ(after.number, periods + 1.0);
  const Repetition before = repetition(1.0 - 23.0 * periods - 5.0, 1.0, 24.0, Infinity::oscillate);
  EXPECT_EQ(before.frame, 19.0 - 13.0) << "an odd repetition (1e12 is even) runs backwards";
}

}  // namespace
}  // namespace vantorelix::standalone
