#include "bench/session.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <stdexcept>
#include <utility>

#include "bench/clock.h"
#include "engine/frame/constants.h"
#include "engine/frame/state.h"
#include "engine/trails/create.h"
#include "engine/trails/queries.h"

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
    const auto curves = scene.driving_curves(object);
    if (curves.empty()) continue;
    const standalone::Key& key = scene.curve(curves.front()).keys().front();
    return scene.set_key(curves.front(), key.time, key.value + 0.01);
  }
  throw std::runtime_error("no object has a curve to edit");
}

std::vector<double> Session::rebuild() {
  end_quiet_time();
  std::vector<double> slices;
  double start = now();
  while (host_.run_idle_once()) {
    const double end = now();
    slices.push_back(end - start);
    start = now();
  }
  return slices;
}

double Session::bare_slice() {
  const double start = now();
  const double deadline = host_.interpreter().time() + _CHUNK_BUDGET;
  while (host_.interpreter().time() < deadline) {
  }
  return now() - start;
}

void Session::clear() {
  clear_trails();
  host_.run_idle();
}

void Session::check(std::size_t samples) {
  const auto& scene = host_.scene();
  const auto shapes = scene.nodes_of_type(NODE_TYPE);
  if (shapes.size() != objects_.size()) throw std::runtime_error("not every object has a trail");
  for (std::size_t i = 0; i < shapes.size(); ++i) {
    const auto points = scene.vectors(shapes[i], "points");
    if (!points || points->size() != samples) throw std::runtime_error("a trail is not complete");
    const auto there = scene.world_matrix(objects_[i], scene.playback_max()).translation();
    const auto& last = points->back();
    if (std::abs(last.x - there.x) + std::abs(last.y - there.y) + std::abs(last.z - there.z) > 1e-9)
      throw std::runtime_error("a trail does not end where its object is");
  }
}

double rebuild_unit(Stage stage) {
  constexpr double kSample = 1e-6;  // hardly any takes as long; all of them would fill memory meanwhile
  const std::size_t trails = stage.objects.size();
  std::vector<double> gaps;
  double last = now();
  Session session(std::move(stage), [&] {
    const double time = now();
    if (time - last > kSample) gaps.push_back(time - last);
    return last = time;
  });
  session.make_trails();
  session.edit();
  gaps.clear();  // an edit is no part of any slice
  last = now();
  session.rebuild();
  // All trails are alike, so of the longest gaps each has one.
  const auto middle = gaps.begin() + static_cast<std::ptrdiff_t>(trails / 2);
  std::nth_element(gaps.begin(), middle, gaps.end(), std::greater<>());
  return *middle;
}

}  // namespace vantorelix::bench
