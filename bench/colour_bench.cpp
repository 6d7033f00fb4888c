// Colouring and filling, beside the copy of the bytes that they read and write.
#include <benchmark/benchmark.h>

#include <cmath>

#include "engine/colour/colour.h"
#include "engine/sampling/catmull_rom.h"

namespace vantorelix::bench {
namespace {

using benchmark::State;

std::vector<Position> wave(std::int64_t n) {
  std::vector<Position> points;
  for (std::int64_t i = 0; i < n; ++i) {
    const double t = 0.001 * static_cast<double>(i);
    points.push_back({10.0 * std::sin(t), 5.0 * std::cos(1.7 * t), t});
  }
  return points;
}

// 24 bytes a point in, 24 out, into fresh vectors.
void copy(State& state) {
  const auto points = wave(state.range(0));
  for ([[maybe_unused]] auto _ : state) {
    std::vector<Position> in(points);
    benchmark::DoNotOptimize(in.data());
    std::vector<Position> out(in);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(copy)->Arg(10'000)->Arg(1'000'000);

void colours(State& state) {
  const auto points = wave(state.range(0));
  for ([[maybe_unused]] auto _ : state) {
    auto coloured = _colors_from_positions(points);
    benchmark::DoNotOptimize(coloured.first.data());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(colours)->Arg(10'000)->Arg(1'000'000);

void fill(State& state) {
  const auto points = wave(state.range(0));
  SampleMap sampled(state.range(0));
  for (std::int64_t i = 0; i < 100; ++i) {
    const auto index = i * (state.range(0) - 1) / 99;
    sampled.set(index, points[static_cast<std::size_t>(index)]);
  }
  for ([[maybe_unused]] auto _ : state) {
    auto filled = _smooth_fill(state.range(0), sampled);  // the samples are copied for it, which a trail's are not
    benchmark::DoNotOptimize(filled.data());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(fill)->Arg(10'000);

}  // namespace
}  // namespace vantorelix::bench
