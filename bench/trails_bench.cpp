// From a scene to finished trails, and back to exact trails after an edit.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <numeric>

#include "bench/session.h"
#include "bench/trails.h"
#include "standalone/formats/reader.h"

namespace vantorelix::bench {
namespace {

using benchmark::State;

void one_object(State& state) {
  const auto frames = state.range(0);
  trails(state, separate_objects(1, static_cast<int>(frames)), static_cast<std::size_t>(frames),
         static_cast<double>(frames));
}
BENCHMARK(one_object)->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->UseManualTime();

void many_objects(State& state) { trails(state, separate_objects(1000, 250), 250, 250e3); }
BENCHMARK(many_objects)->UseManualTime();

void chain_leaf(State& state) { trails(state, chain(50, 1000), 1000, 50e3); }
BENCHMARK(chain_leaf)->UseManualTime();

void tree(State& state) { trails(state, binary_tree(100, 1000), 1000, 100e3); }
BENCHMARK(tree)->UseManualTime();

Stage clip() {
  Stage stage{standalone::read_bvh(bvh_text(60, 1000), "clip.bvh"), {}};
  stage.objects = stage.scene.nodes_of_type("joint");
  std::erase_if(stage.objects, [&](auto node) { return !stage.scene.has_keys(node); });
  return stage;
}

void clip_all_joints(State& state) {
  Stage stage = clip();
  if (stage.objects.size() != 60) return state.SkipWithError("the clip has not 60 animated joints");
  trails(state, std::move(stage), 1000, 60e3);
}
BENCHMARK(clip_all_joints)->UseManualTime();

void clip_load(State& state) {
  const auto file = std::filesystem::temp_directory_path() / "vantorelix_bench_clip.bvh";
  std::ofstream(file, std::ios::binary) << bvh_text(60, 1000);
  for ([[maybe_unused]] auto _ : state) {
    auto scene = standalone::read_scene(file);
    benchmark::DoNotOptimize(scene);
  }
  state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(file));
  std::filesystem::remove(file);
}
BENCHMARK(clip_load);

// The longest of a thousand.
double p999(std::vector<double> lengths) {
  std::sort(lengths.begin(), lengths.end());
  return lengths[static_cast<std::size_t>(0.999 * static_cast<double>(lengths.size() - 1))];
}

// Total time of one rebuild, and the lengths of the slices of many, beside as many in which nothing is done.
void rebuild(State& state) {
  const auto frames = state.range(0);
  const double unit = rebuild_unit(separate_objects(1000, static_cast<int>(frames)));
  Session session(separate_objects(1000, static_cast<int>(frames)));
  session.make_trails();
  std::vector<double> slices, bare;
  for ([[maybe_unused]] auto _ : state) {
    session.edit();
    const auto lengths = session.rebuild();
    state.SetIterationTime(std::accumulate(lengths.begin(), lengths.end(), 0.0));
    slices.insert(slices.end(), lengths.begin(), lengths.end());
    while (bare.size() < slices.size()) bare.push_back(session.bare_slice());
  }
  session.check(static_cast<std::size_t>(frames));
  state.counters["slices"] = static_cast<double>(slices.size());
  state.counters["slice_p999"] = p999(slices);
  state.counters["slice_max"] = *std::max_element(slices.begin(), slices.end());
  state.counters["bare_p999"] = p999(bare);
  state.counters["unit"] = unit;
}
BENCHMARK(rebuild)->Arg(250)->Arg(1000)->UseManualTime()->MinTime(4.0);

// One object's trail made exact again, at growing lengths.
void rebuild_one(State& state) {
  const auto frames = state.range(0);
  Session session(separate_objects(1, static_cast<int>(frames)));
  session.make_trails();
  for ([[maybe_unused]] auto _ : state) {
    session.edit();
    const auto lengths = session.rebuild();
    state.SetIterationTime(std::accumulate(lengths.begin(), lengths.end(), 0.0));
  }
  session.check(static_cast<std::size_t>(frames));
}
BENCHMARK(rebuild_one)->RangeMultiplier(10)->Range(1000, 1'000'000)->UseManualTime();

}  // namespace
}  // namespace vantorelix::bench
