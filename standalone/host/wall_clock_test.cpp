#include "standalone/host/wall_clock.h"

#include <gtest/gtest.h>

namespace vantorelix::standalone {
namespace {

// A system clock and a counter that the test turns.
struct World {
  double seconds = 1.7e9;
  double ticks = 1e15;
  double ticks_a_second = 2.5e9;
  int looks = 0;  // at the system clock

  void pass(double s) {
    seconds += s;
    ticks += s * ticks_a_second;
  }
};

struct Turned {
  World* world;
  std::uint64_t ticks() const { return static_cast<std::uint64_t>(world->ticks); }
  double seconds() const {
    ++world->looks;
    return world->seconds;
  }
};

using Clock = BasicWallClock<Turned>;

constexpr double kStep = 1e-6;
constexpr double kBehind = 3e-6;

struct WallClockTest : testing::Test {
  World world;
  Clock clock{{&world}};
  double last = 0.0;

  // Reads every microsecond; each reading must be the system clock's, or a little behind, and not before the last.
  void read_for(double seconds) {
    for (const double end = world.seconds + seconds; world.seconds < end; world.pass(kStep)) {
      const double now = clock.now();
      ASSERT_LE(now, world.seconds);
      ASSERT_GE(now, world.seconds - kBehind);
      ASSERT_GE(now, last);
      last = now;
    }
  }
  // ... without looking at how far off it is.
  void read_forward_for(double seconds) {
    for (const double end = world.seconds + seconds; world.seconds < end; world.pass(kStep)) {
      const double now = clock.now();
      ASSERT_GE(now, last);
      last = now;
    }
  }
  int looks_in(double seconds) {
    const int before = world.looks;
    read_for(seconds);
    return world.looks - before;
  }
};

struct EvenCounter : WallClockTest, testing::WithParamInterface<double> {};

TEST_P(EvenCounter, LeavesOneLookAtTheSystemClockAMillisecond) {
  world.ticks_a_second = GetParam();
  read_for(0.005);
  const int looks = looks_in(0.1);
  EXPECT_LE(looks, 110);
  EXPECT_GE(looks, 90);
}

INSTANTIATE_TEST_SUITE_P(OfAnyRate, EvenCounter, testing::Values(1e6, 24e6, 3e9));

TEST_F(WallClockTest, TellsTheTimeFromTheFirstReadingOn) {
  EXPECT_EQ(clock.now(), world.seconds);
  world.pass(0.4);
  EXPECT_EQ(clock.now(), world.seconds);
}

TEST_F(WallClockTest, IsRightAfterAnyPause) {
  read_for(0.005);
  for (const double pause : {0.002, 0.7, 3600.0}) {
    world.pass(pause);
    read_for(0.005);
  }
}

TEST_F(WallClockTest, FollowsASystemClockThatIsSetAfterASpan) {
  for (const double jump : {3600.0, -3600.0, 0.5, -0.5}) {
    read_for(0.005);
    world.seconds += jump;
    const double set = world.seconds;
    while (world.seconds < set + 1.1 * Clock::kSpan) {
      clock.now();
      world.pass(kStep);
    }
    last = 0.0;
    read_for(0.005);
    EXPECT_LE(looks_in(0.01), 11) << jump;
  }
}

TEST_F(WallClockTest, WaitsForASystemClockThatIsPutBackALittle) {
  read_for(0.005);
  world.seconds -= 0.5 * Clock::kSpan;
  read_forward_for(0.002);
  read_for(0.005);
}

TEST_F(WallClockTest, NeverRunsBackwardsWhenTheCountersRateChanges) {
  for (const double factor : {3.0, 0.25, 1.5, 0.9, 1.1}) {
    read_for(0.005);
    world.ticks_a_second *= factor;
    read_forward_for(0.005);
  }
  read_for(0.005);
}

TEST_F(WallClockTest, BelievesNoCounterThatKeepsChangingItsRate) {
  for (int i = 0; i < 10'000; ++i) {
    ASSERT_EQ(clock.now(), world.seconds) << i;
    world.pass(kStep);
    world.ticks_a_second *= 1.00001;  // by one per cent a span
  }
  EXPECT_EQ(world.looks, 10'000);
}

TEST_F(WallClockTest, IsRightWhenTheCounterStartsAnewOrStandsStill) {
  read_for(0.005);
  world.ticks = 0.0;
  read_forward_for(0.002);
  read_for(0.005);
  world.ticks_a_second = 0.0;
  read_forward_for(0.0011);
  // Stood still: nothing to believe after one span of it.
  world.pass(2.0 * Clock::kSpan);
  world.ticks += 1e9;
  read_for(0.005);
}

TEST(WallClock, IsTheSystemClock) {
  WallClock clock;
  const double start = SystemTime::seconds();
  for (double before = start; before < start + 0.02 && before >= start; before = SystemTime::seconds()) {
    const double now = clock.now();
    ASSERT_NEAR(now, before, 1.0);
  }
}

TEST(TickCounter, Counts) {
  const std::uint64_t first = read_ticks();
  const double start = SystemTime::seconds();
  while (SystemTime::seconds() == start) {
  }
  EXPECT_NE(read_ticks(), first);
}

}  // namespace
}  // namespace vantorelix::standalone
