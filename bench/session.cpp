#include "bench/session.h"

#include <sys/resource.h>

#include <cmath>
#include <ctime>
#include <functional>
#include <stdexcept>
#include <utility>

#include "bench/clock.h"
#include "engine/commands/clear.h"
#include "engine/commands/create.h"
#include "engine/state/constants.h"
#include "engine/state/state.h"

namespace vantorelix::bench {

using standalone::NodeId;

namespace {

standalone::HostOptions quiet_options(std::function<double()> clock) {
  standalone::HostOptions options;
  options.clock = std::move(clock);
  options.print = [](const std::string&) {};
  options.warning = [](const std::string& text) { throw std::runtime_error(text); };
  return options;
}

// The queue need not wait any longer after the last edit.
void end_quiet_time() { _LAST_EDIT = 0.0; }

// Seconds that this thread had the processor; what a hypervisor took is not counted where it says so.
double processor_seconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

// Times that this process waited of its own accord.
long waits() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_nvcsw;
}

template <class Body>
Slice timed(Body&& body) {
  const long waits_before = waits();
  const double processor_before = processor_seconds();
  const double start = now();
  body();
  const double seconds = now() - start;
  const double lost = seconds - (processor_seconds() - processor_before);
  return {seconds, waits() == waits_before ? lost : 0.0};
}

}  // namespace

Session::Session(Stage stage, std::function<double()> clock)
    : objects_(std::move(stage.objects)), host_(std::move(stage.scene), quiet_options(std::move(clock))) {
  _initialise({&host_.cmds(), &host_.om(), &host_.oma(), &host_.interpreter()});
}

double Session::make_trails() {
  host_.select(objects_);
  const double start = now();
  create_trail();
  end_quiet_time();
  host_.run_idle();
  return now() - start;
}

void Session::edit() {
  standalone::Scene& scene = host_.scene();
  for (const NodeId object : objects_) {
    const auto curves = scene.curves.driving_curves(object);
    if (curves.empty()) continue;
    const standalone::Key& key = scene.curves.at(curves.front()).keys().front();
    scene.curves.set_key(curves.front(), key.time, key.value + 0.01);
    return end_quiet_time();
  }
  throw std::runtime_error("the scene has no animated object whose keys could be edited");
}

std::optional<Slice> Session::slice() {
  if (host_.idle_count() == 0) return std::nullopt;
  return timed([&] { host_.run_idle_once(); });
}

Slice Session::bare_slice() {
  return timed([&] {
    const double deadline = host_.interpreter().time() + _CHUNK_BUDGET;
    while (host_.interpreter().time() < deadline) {
    }
  });
}

void Session::clear() {
  clear_trails();
  host_.run_idle();
}

void Session::check(std::size_t samples) {
  const auto& scene = host_.scene();
  const auto shapes = scene.nodes.of_type(NODE_TYPE);
  if (shapes.size() != objects_.size()) throw std::runtime_error("not every object of the scene has got a trail");
  for (std::size_t i = 0; i < shapes.size(); ++i) {
    const auto points = scene.attributes.vectors(shapes[i], "points");
    if (!points || points->size() != samples)
      throw std::runtime_error("a trail has fewer samples than the range asks for");
    const auto there = scene.evaluation.world_matrix(objects_[i], scene.settings.playback_max()).translation();
    const auto& last = points->back();
    if (std::abs(last.x - there.x) + std::abs(last.y - there.y) + std::abs(last.z - there.z) > 1e-9)
      throw std::runtime_error("a trail does not end at its object's position");
  }
}

}  // namespace vantorelix::bench
