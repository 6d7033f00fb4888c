// Wall-clock seconds for less than the system's clock costs: between looks at that clock a counter is read instead.
//
// The engine reads the clock after every sample. With the system's clock alone a trail of 10,000 frames takes 1.7 times
// as long, and the engine alone 3.2 times; shown by a build whose now() is `return source_.seconds()`, either in turns:
// build/bin/vantorelix_bench --benchmark_filter='one_object/10000|engine_alone'
#pragma once

#include <chrono>
#include <cmath>
#include <cstdint>
#include <type_traits>

#include "base/tick_counter.h"

namespace vantorelix::standalone {

struct SystemTime {
  static std::uint64_t ticks() { return read_ticks(); }
  // Wall-clock seconds.
  static double seconds() {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
  }
};

// Nothing is assumed about the processor's counter. After two spans (of kSpan) in which it ran at the same rate it is
// used for one span more; otherwise every reading is the system clock's. So where the system clock was set, or the
// machine slept, readings are right again after one span at the latest.
//
// While the counter is believed a reading is behind the system clock, by a few microseconds at most. Readings only go
// back where the system clock was set back by more than a span. One thread at a time.
template <class Source>
class BasicWallClock {
 public:
  explicit BasicWallClock(Source source = {}) : source_(source) {}

  double now() {
    const std::uint64_t elapsed = source_.ticks() - ticks_;
    if (elapsed < believed_) return reading_after(elapsed);
    return look();
  }

  static constexpr double kSpan = 0.001;  // seconds

 private:
  // Rates that differ by no more than this part are the same, and the counter is taken to run slower by as much:
  // what it says then never has to be taken back.
  static constexpr double kSlack = 0.001;

  double reading_after(std::uint64_t elapsed) const {
    return seconds_ + static_cast<double>(static_cast<std::int64_t>(elapsed)) * rate_;
  }

  double look() {
    double seconds = source_.seconds();
    const std::uint64_t ticks = source_.ticks();
    // A counter that sped up ran ahead: wait for the system clock.
    const double reading = reading_after(believed_);
    if (seconds < reading && reading - seconds < kSpan) seconds = reading;
    const double passed = seconds - seconds_;
    if (passed >= 0.0 && passed < kSpan) return seconds;  // too short to tell a rate

    const double rate = (1.0 - kSlack) * passed / static_cast<double>(static_cast<std::int64_t>(ticks - ticks_));
    const bool even = std::abs(rate - rate_) <= kSlack * rate;
    believed_ = even ? static_cast<std::uint64_t>(kSpan / rate) : 0;
    rate_ = rate;
    ticks_ = ticks;
    seconds_ = seconds;
    return seconds;
  }

  Source source_;
  // At the last look that ended a span.
  std::uint64_t ticks_ = 0;
  double seconds_ = 0.0;
  double rate_ = 0.0;           // seconds a tick in the span before it
  std::uint64_t believed_ = 0;  // for how many ticks the counter is
};

// Where no counter costs less than the system's clock, that is read once each time.
struct PlainWallClock {
  static double now() { return SystemTime::seconds(); }
};

using WallClock = std::conditional_t<kHasTickCounter, BasicWallClock<SystemTime>, PlainWallClock>;

}  // namespace vantorelix::standalone
