// Scene files of the user's choice: VANTORELIX_BENCH_SCENES names them, separated by ":".
#include <benchmark/benchmark.h>
#include <cgltf.h>
#include <ufbx.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "bench/trails.h"
#include "standalone/formats/reader.h"

namespace vantorelix::bench {
namespace {

using benchmark::State;
namespace fs = std::filesystem;

// Every object with keys of its own, over the scene's range.
void file_trails(State& state, const fs::path& file) {
  Stage stage{standalone::read_scene(file), {}};
  for (const auto node : stage.scene.nodes.all())
    if (stage.scene.nodes.is_transform(node) && stage.scene.evaluation.is_animated(node)) stage.objects.push_back(node);
  const auto samples =
      static_cast<std::size_t>(stage.scene.settings.playback_max() - stage.scene.settings.playback_min()) + 1;
  const double units = static_cast<double>(samples * stage.objects.size());
  state.counters["frames"] = static_cast<double>(samples);
  trails(state, std::move(stage), samples, units);
}

void file_load(State& state, const fs::path& file) {
  for ([[maybe_unused]] auto _ : state) {
    auto scene = standalone::read_scene(file);
    benchmark::DoNotOptimize(scene);
  }
}

// The libraries alone, as they come.
void gltf_parse(State& state, const fs::path& file) {
  for ([[maybe_unused]] auto _ : state) {
    const cgltf_options options = {};
    cgltf_data* document = nullptr;
    if (cgltf_parse_file(&options, file.c_str(), &document) != cgltf_result_success ||
        cgltf_load_buffers(&options, document, file.c_str()) != cgltf_result_success)
      return state.SkipWithError("the library does not read this file");
    cgltf_free(document);
  }
}

void fbx_parse(State& state, const fs::path& file) {
  for ([[maybe_unused]] auto _ : state) {
    ufbx_scene* const document = ufbx_load_file(file.c_str(), nullptr, nullptr);
    if (document == nullptr) return state.SkipWithError("the library does not read this file");
    ufbx_free_scene(document);
  }
}

const bool kRegistered = [] {
  const char* const named = std::getenv("VANTORELIX_BENCH_SCENES");
  std::istringstream list(named ? named : "");
  for (std::string path; std::getline(list, path, ':');) {
    const fs::path file = path;
    const std::string name = file.filename().string();
    benchmark::RegisterBenchmark(("file_trails/" + name).c_str(), file_trails, file)->UseManualTime();
    benchmark::RegisterBenchmark(("file_load/" + name).c_str(), file_load, file);
    const bool gltf = file.extension() == ".gltf" || file.extension() == ".glb";
    if (gltf) benchmark::RegisterBenchmark(("file_parse/" + name).c_str(), gltf_parse, file);
    if (file.extension() == ".fbx") benchmark::RegisterBenchmark(("file_parse/" + name).c_str(), fbx_parse, file);
  }
  return true;
}();

}  // namespace
}  // namespace vantorelix::bench
