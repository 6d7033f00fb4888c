// From a scene to finished trails, and back to exact trails after an edit.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>

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
  stage.objects = stage.scene.nodes.of_type("joint");
  std::erase_if(stage.objects, [&](auto node) { return !stage.scene.curves.has_keys(node); });
  return stage;
}

void clip_all_joints(State& state) {
  Stage stage = clip();
  if (stage.objects.size() != 60) return state.SkipWithError("the clip does not have 60 animated joints");
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

// Seconds of all slices together: every trail made exact again after an edit, `trails` of `frames` samples each.
void rebuild_all(State& state, int trails, int frames) {
  Session session(separate_objects(trails, frames));
  session.make_trails();
  for ([[maybe_unused]] auto _ : state) {
    session.edit();
    double seconds = 0.0;
    while (const auto slice = session.slice()) seconds += slice->seconds;
    state.SetIterationTime(seconds);
  }
  session.check(static_cast<std::size_t>(frames));
}

void rebuild(State& state) { rebuild_all(state, 1000, static_cast<int>(state.range(0))); }
BENCHMARK(rebuild)->Arg(250)->Arg(1000)->UseManualTime();

// One object's trail, at growing lengths.
void rebuild_one(State& state) { rebuild_all(state, 1, static_cast<int>(state.range(0))); }
BENCHMARK(rebuild_one)->RangeMultiplier(10)->Range(1000, 1'000'000)->UseManualTime();

}  // namespace
}  // namespace vantorelix::bench
