// How long the slices of a rebuild are. A slice ends with the unit in which its budget ends: the work between two looks
// at the clock. It is timed from outside, so what a step does before its budget begins and after it is over counts,
// too.
//
// Interrupts of the machine, some hundreds a second, lengthen units, and long units are where budgets end more often.
// So a slice may be as much over as the unit is long that a moment falls into, at the same quantile of slices and
// moments. Of slices that lost the processor to somebody else nothing is learnt; they are left out, and counted.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <numeric>
#include <optional>
#include <vector>

#include "bench/session.h"
#include "engine/state/constants.h"
#include "standalone/host/wall_clock.h"

namespace vantorelix::bench {
namespace {

// The clock of the standalone host, which remembers how long nobody looked at it.
class WatchedClock {
 public:
  WatchedClock() { gaps_.reserve(1 << 16); }  // to grow would take time of a slice

  double now() {
    const double time = clock_.now();
    if (time - last_ > kSample) gaps_.push_back(time - last_);
    return last_ = time;
  }

  // Seconds of the gaps since `forget`: planning a trail and taking the first sample, reading when the keys are and
  // taking the first of them, colouring and pushing what is sampled.
  const std::vector<double>& gaps() const { return gaps_; }

  void forget() {
    last_ = clock_.now();
    gaps_.clear();
  }

 private:
  static constexpr double kSample = 1e-6;  // hardly any takes as long; all of them would fill memory

  standalone::WallClock clock_;
  double last_ = 0.0;
  std::vector<double> gaps_;
};

double sum(const std::vector<double>& of) { return std::accumulate(of.begin(), of.end(), 0.0); }

// Of none it is 0.
double quantile(double part, std::vector<double>& of) {
  if (of.empty()) return 0.0;
  const auto at = of.begin() + static_cast<std::ptrdiff_t>(part * static_cast<double>(of.size() - 1));
  std::nth_element(of.begin(), at, of.end());
  return *at;
}

// The length of the gap that a moment of `seconds` falls into, at its quantile `part`: moments outside gaps are in
// none.
double quantile_of_moments(double part, std::vector<double>& gaps, double seconds) {
  std::sort(gaps.begin(), gaps.end(), std::greater<>());
  double left = (1.0 - part) * seconds;
  for (const double gap : gaps)
    if ((left -= gap) < 0.0) return gap;
  return 0.0;
}

constexpr std::size_t kSlices = 2000;  // p99.9 is the third longest
constexpr double kLost = 50e-6;        // seconds
constexpr double kInterrupt = 10e-6;   // seconds: a look at the system's clock, the longest the loop does, is shorter

bool lost_processor(const Slice& slice) { return slice.lost > kLost; }

// Rebuilds until there are enough slices that used up their budget, and as many loops that only read the clock. The
// time of the benchmark is the unit that slices are held against: the fastest repetition is the one that was disturbed
// least.
void slices(benchmark::State& state) {
  const auto frames = static_cast<int>(state.range(0));
  WatchedClock clock;
  Session session(separate_objects(1000, frames), [&] { return clock.now(); });
  session.make_trails();
  std::vector<double> lengths, bare, gaps, interrupts;
  double left_out = 0.0;
  for ([[maybe_unused]] auto _ : state) {
    while (lengths.size() < kSlices) {
      session.edit();
      clock.forget();
      for (std::optional<Slice> slice; (slice = session.slice()); clock.forget()) {
        if (slice->seconds < _CHUNK_BUDGET) continue;
        if (lost_processor(*slice)) {
          ++left_out;
          continue;
        }
        lengths.push_back(slice->seconds);
        gaps.insert(gaps.end(), clock.gaps().begin(), clock.gaps().end());
      }
      while (bare.size() < lengths.size()) {
        clock.forget();
        const Slice slice = session.bare_slice();
        if (lost_processor(slice)) continue;
        bare.push_back(slice.seconds);
        std::copy_if(clock.gaps().begin(), clock.gaps().end(), std::back_inserter(interrupts),
                     [](double gap) { return gap > kInterrupt; });
      }
    }
    state.SetIterationTime(quantile_of_moments(0.999, gaps, sum(lengths)));
  }
  session.check(static_cast<std::size_t>(frames));
  state.counters["slices"] = static_cast<double>(lengths.size());
  state.counters["left_out"] = left_out;
  state.counters["unit_median"] = quantile(0.5, gaps);
  state.counters["slice_p99"] = quantile(0.99, lengths);
  state.counters["slice_p999"] = quantile(0.999, lengths);
  state.counters["slice_max"] = quantile(1.0, lengths);
  state.counters["bare_p999"] = quantile(0.999, bare);
  state.counters["interrupts_a_second"] = static_cast<double>(interrupts.size()) / sum(bare);
  state.counters["interrupt_median"] = quantile(0.5, interrupts);
  state.counters["interrupt_p99"] = quantile(0.99, interrupts);
}
BENCHMARK(slices)->Arg(250)->Arg(1000)->Iterations(1)->Repetitions(4)->UseManualTime();

}  // namespace
}  // namespace vantorelix::bench
