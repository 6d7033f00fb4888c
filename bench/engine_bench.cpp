// What the engine itself costs a sample: the host's evaluation is free, its clock is the one of the standalone host.
#include <benchmark/benchmark.h>

#include <stdexcept>

#include "engine/rebuild/queue.h"
#include "engine/rebuild/triggers.h"
#include "engine/state/state.h"
#include "standalone/host/wall_clock.h"

namespace vantorelix::bench {
namespace {

using host::Callback;
using host::Value;

constexpr double kFrames = 100'000;

class FreePlug : public host::Plug {
 public:
  std::shared_ptr<host::Plug> elementByLogicalIndex(unsigned) override { return std::make_shared<FreePlug>(); }
  Vector translation_at(double t, const host::TimeUnit&) override { return {t, 0.0, 0.0}; }
  void set_vector_array(const std::shared_ptr<host::VectorArray>&) override {}
};

class FreeArray : public host::VectorArray {
 public:
  void append(const Vector&) override {}
};

class FreeObjects : public host::ObjectModel {
 public:
  std::shared_ptr<host::Plug> findPlug(const std::string&, const std::string&) override {
    return std::make_shared<FreePlug>();
  }
  host::TimeUnit uiUnit() override { return {}; }
  std::shared_ptr<host::VectorArray> vector_array(const Vectors&) override { return vector_array(); }
  std::shared_ptr<host::VectorArray> vector_array() override { return std::make_shared<FreeArray>(); }
  bool isReadingFile() override { return false; }
  bool isWritingFile() override { return false; }
  bool isOpeningFile() override { return false; }
  bool isNewingFile() override { return false; }
  Value addNodeRemovedCallback(const Callback&, const std::string&) override { return 1; }
  void removeCallback(const Value&) override {}
};

class FreeAnimation : public host::AnimationModel {
 public:
  bool isPlaying() override { return false; }
  double currentTime() override { return 1.0; }
  Value addAnimCurveEditedCallback(const Callback&) override { return 1; }
  Value addAnimKeyframeEditedCallback(const Callback&) override { return 1; }
};

class FreeCommands : public host::CommandLayer {
 public:
  int queued = 0;

  std::vector<std::string> ls_selection() override { return {"|object"}; }
  std::vector<std::string> ls_type(const std::string&) override { return {}; }
  bool objExists(const std::string&) override { return true; }
  std::vector<std::string> listRelatives_parent(const std::string&) override { return {"|viz"}; }
  std::vector<std::string> listRelatives_shapes(const std::string&) override { return {"|viz|vizShape"}; }
  void select_replace(const std::vector<std::string>&) override {}
  void select(const std::vector<std::string>&) override {}
  void select_clear() override {}
  std::string createNode(const std::string&, const std::string& name) override { return name; }
  std::string rename(const std::string&, const std::string& name) override { return name; }
  void parent(const std::string&, const std::string&) override {}
  void group_empty(const std::string&) override {}
  void delete_(const std::string&) override {}
  std::string curve(const Value&, const std::vector<Vector>&, const std::string& name) override { return name; }
  std::array<double, 16> getAttr_matrix(const std::string&, double time) override {
    return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, time, 0, 0, 1};
  }
  void setAttr(const std::string&, const Value&) override {}
  std::vector<double> keyframe_times(const std::string&) override { return {1.0, kFrames}; }
  double playbackOptions_min() override { return 1.0; }
  double playbackOptions_max() override { return kFrames; }
  double currentTime() override { return 1.0; }
  void evalDeferred(const Callback&) override { ++queued; }
  void refresh() override {}
  void inViewMessage(const Value&) override {}
  void warning(const std::string& text) override { throw std::runtime_error(text); }
  std::vector<std::string> getPanel_model() override { return {}; }
  bool modelEditor_query(const std::string&, const std::string&) override { return true; }
  void modelEditor_enable(const std::string&, const std::string&) override {}
  bool optionVar_exists(const std::string&) override { return false; }
  Value optionVar_query(const std::string&) override { return {}; }
  void optionVar_set_int(const std::string&, std::int64_t) override {}
  void optionVar_set_float(const std::string&, double) override {}
  void optionVar_append_string(const std::string&, const std::string&) override {}
  bool about_batch() override { return false; }
  std::string about_version() override { return "2024"; }
  std::string internalVar_userAppDir() override { return {}; }
  bool pluginInfo_loaded(const std::string&) override { return true; }
  void loadPlugin(const std::string&) override {}
};

class RealClock : public host::Interpreter {
 public:
  double time() override { return clock_.now(); }
  void print(const std::string&) override {}
  std::shared_ptr<host::Module> import_module(const std::string&) override { return nullptr; }
  void call_imported(const std::string&, const std::string&) override {}
  std::optional<std::string> environment(const std::string&) override { return {}; }
  void set_environment(const std::string&, const std::string&) override {}

 private:
  standalone::WallClock clock_;
};

// One trail rebuilt through the queue: planning, sampling, colouring, keys, push.
void engine_alone(benchmark::State& state) {
  FreeCommands commands;
  FreeObjects objects;
  FreeAnimation animation;
  RealClock clock;
  _initialise({&commands, &objects, &animation, &clock});
  auto settings = std::make_shared<Settings>();
  settings->set("source", "|object");
  settings->set("samples_per_frame", 1);
  _REGISTRY.set("viz", settings);
  for ([[maybe_unused]] auto _ : state) {
    _schedule_rebuild();
    _LAST_EDIT = 0.0;  // the queue need not wait after the last edit
    while (_PENDING) _rebuild_step();
  }
  state.counters["unit"] = kFrames;
}
BENCHMARK(engine_alone);

void clock_read(benchmark::State& state) {
  RealClock clock;
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(static_cast<host::Interpreter&>(clock).time());
}
BENCHMARK(clock_read);

}  // namespace
}  // namespace vantorelix::bench
