#include "cli/trail_session.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "cli/failure.h"
#include "cli/interrupt.h"
#include "cli/output/text.h"
#include "engine/commands/create.h"
#include "engine/state/constants.h"
#include "engine/state/preferences.h"
#include "engine/state/state.h"
#include "engine/trails/trail_data.h"

namespace vantorelix::cli {

using standalone::NodeId;

namespace {

// A sample is two triples of doubles on its node, twice while it is replaced: this many stay below 10 GB.
constexpr double kMostSamples = 1e8;

// Turn k holds the objects whose short name occurs for the (k+1)-th time.
std::vector<std::vector<NodeId>> turns(const standalone::Scene& scene, const std::vector<NodeId>& objects) {
  std::vector<std::vector<NodeId>> result;
  std::unordered_map<std::string, std::size_t> seen;
  for (const NodeId object : objects) {
    const std::size_t turn = seen[std::string(scene.names.short_name(object))]++;
    if (turn == result.size()) result.emplace_back();
    result[turn].push_back(object);
  }
  return result;
}

}  // namespace

double WorkClock::now() {
  check_interrupt();
  return clock_.now() + ahead_;
}

TrailSession::TrailSession(standalone::Scene scene, const std::optional<std::filesystem::path>& preferences,
                           Terminal& terminal)
    : terminal_(terminal) {
  standalone::HostOptions options;
  options.preferences = preferences;
  options.clock = [this] { return clock_.now(); };
  options.print = [this](const std::string& text) { messages_.push_back(text); };
  options.warning = [this](const std::string& text) { failures_.push_back(text); };
  host_.emplace(std::move(scene), std::move(options));
  _initialise({&host_->cmds(), &host_->om(), &host_->oma(), &host_->interpreter()});
}

void TrailSession::check_size(std::size_t objects, const TrailSettings& settings) {
  const double per_frame = settings.samples_per_frame.is_none() ? static_cast<double>(_get_pref_samples())
                                                                : settings.samples_per_frame.to_float();
  const double frames = scene().settings.playback_max() - scene().settings.playback_min();
  const double samples = std::floor(frames * std::max(1.0, per_frame)) + 1.0;
  if (!(samples >= 2.0))
    throw Failure("the range " + number(scene().settings.playback_min()) + " to " +
                  number(scene().settings.playback_max()) +
                  " holds no two samples; give a longer one with --range FIRST:LAST");
  if (samples * static_cast<double>(objects) > kMostSamples)
    throw Failure(counted(objects, "trail") + " of " + number(samples) +
                  " samples are more than 100 million in all; shorten the range with --range, or choose fewer objects "
                  "with --select");
}

std::vector<Trail> TrailSession::create(const std::vector<NodeId>& objects, const TrailSettings& settings,
                                        const std::function<void()>& after_turn) {
  std::unordered_map<NodeId, Trail> by_source;
  const auto all_turns = turns(scene(), objects);
  for (const auto& turn : all_turns) {
    run_turn(turn, settings);
    if (after_turn) after_turn();
    const auto trails = registered_trails();
    for (const Trail& trail : trails) by_source.emplace(trail.source, trail);
    if (&turn != &all_turns.back()) detach(trails);
  }
  std::vector<Trail> result;
  for (const NodeId object : objects) {
    const auto found = by_source.find(object);
    if (found == by_source.end()) throw Failure(scene().names.long_name(object) + ": the engine made no trail of it");
    result.push_back(found->second);
  }
  return result;
}

std::vector<std::string> TrailSession::take_messages() { return std::exchange(messages_, {}); }

void TrailSession::run_turn(const std::vector<NodeId>& objects, const TrailSettings& settings) {
  host_->select(objects);
  create_trail(settings.samples_per_frame, settings.line_width, settings.point_size, settings.show_line,
               settings.show_dots, settings.ghost, settings.color_mode);
  // Nobody edits here, so the quiet time after an edit need not be waited for.
  clock_.skip(_DEBOUNCE);
  run_idle_loop();
  terminal_.end_progress();
  if (!failures_.empty()) throw Failure(failures_.front());
}

void TrailSession::run_idle_loop() {
  while (host_->run_idle_once())
    if (_WORK)
      terminal_.progress("sampling, trail " + std::to_string(_WORK->k + 1) + " of " +
                         std::to_string(_WORK->items.size()));
}

// Takes the trails out of the registry and off their names, as a user who renames the nodes would: what they hold
// stays, and the next trail of that name leaves them alone.
void TrailSession::detach(const std::vector<Trail>& trails) {
  for (const Trail& trail : trails) {
    const std::string name = scene().names.unique_name(trail.viz);
    _REGISTRY.erase(name);
    scene().nodes.rename(trail.viz, std::string(scene().names.short_name(trail.viz)) + "_1");
  }
}

std::vector<Trail> TrailSession::registered_trails() {
  std::vector<Trail> trails;
  for (const auto& [viz, settings] : _REGISTRY)
    trails.push_back({scene().names.require(viz), scene().names.require(*settings->at("source").as_text()),
                      settings->at("samples_per_frame")});
  return trails;
}

}  // namespace vantorelix::cli
