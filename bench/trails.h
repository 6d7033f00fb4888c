// What most benchmarks of trails do.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <utility>

#include "bench/session.h"

namespace vantorelix::bench {

// Makes the trails of a stage again and again. Every pass starts after an edit, as an animator's does: making trails
// moves nothing, so a pass right after another would find the world matrices of the one before. `units` is what one
// pass is divided by: samples, or links evaluated.
inline void trails(benchmark::State& state, Stage stage, std::size_t frames, double units) {
  Session session(std::move(stage));
  for ([[maybe_unused]] auto _ : state) {
    session.edit();
    state.SetIterationTime(session.make_trails());
    session.check(frames);
    session.clear();
  }
  state.counters["unit"] = units;
}

}  // namespace vantorelix::bench
