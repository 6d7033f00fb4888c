#include "session/session.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <unordered_map>
#include <utility>

#include "base/number_text.h"
#include "engine/commands/create.h"
#include "engine/commands/nurbs.h"
#include "engine/rebuild/queue.h"
#include "engine/state/constants.h"
#include "engine/state/preferences.h"
#include "engine/trails/trail_data.h"
#include "host/error.h"
#include "session/failure.h"

namespace vantorelix::session {

using standalone::NodeId;

namespace {

// A sample is two triples of doubles on its node, twice while it is replaced: this many stay below 10 GB.
constexpr double kMaxSamples = 1e8;

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

template <class T>
bool converts(const host::Value& value, T (host::Value::*convert)() const) {
  try {
    (value.*convert)();
    return true;
  } catch (const host::Error&) {
    return false;
  }
}
bool is_integer(const host::Value& value) { return converts(value, &host::Value::to_int); }
bool is_float(const host::Value& value) { return converts(value, &host::Value::to_float); }

// A preference and whether the engine can read a value of it.
struct Preference {
  const std::string* name;
  bool (*converts)(const host::Value&);
};
constexpr Preference kPreferences[] = {{&OPT_SAMPLES, is_integer},   {&OPT_LINE_WIDTH, is_float},
                                       {&OPT_POINT_SIZE, is_float},  {&OPT_SHOW_LINE, is_integer},
                                       {&OPT_SHOW_DOTS, is_integer}, {&OPT_XRAY, is_integer},
                                       {&OPT_COLOR_MODE, is_integer}};

standalone::HostOptions host_options(const Options& options, std::vector<std::string>& failures,
                                     std::function<double()> clock) {
  standalone::HostOptions result;
  result.preferences = options.preferences;
  result.clock = std::move(clock);
  result.print = [](const std::string&) {};  // whoever shows the session says what was done
  result.warning = [&failures](const std::string& text) { failures.push_back(text); };
  return result;
}

}  // namespace

Session::Session(standalone::Scene scene, Options options)
    : options_(std::move(options)),
      host_(std::move(scene), host_options(options_, failures_, [this] { return now(); })),
      scene_(host_.scene()) {
  const OwnState::Turn in_force(state_);
  _initialise({&host_.cmds(), &host_.om(), &host_.oma(), &host_.interpreter()});
}

std::vector<std::string> Session::preference_faults() const {
  std::string known;
  for (const auto& [name, convert] : kPreferences) known += (known.empty() ? "" : ", ") + *name;
  std::vector<std::string> faults;
  for (const std::string& option : host_.option_names()) {
    const auto preference = std::find_if(std::begin(kPreferences), std::end(kPreferences),
                                         [&](const Preference& p) { return *p.name == option; });
    const host::Value value = *host_.option(option);
    if (preference == std::end(kPreferences))
      faults.push_back("'" + option + "' is not the name of a preference and has no effect; the names are " + known);
    else if (!preference->converts(value))
      faults.push_back("'" + option + "' holds " + value.repr() + ", which is not a number; its default is used");
  }
  return faults;
}

bool Session::names_color_mode(const TrailSettings& settings) const {
  return !settings.color_mode.is_none() || host_.option(OPT_COLOR_MODE);
}

void Session::check_cancelled() const {
  if (options_.cancelled && options_.cancelled()) throw host::Interrupt();
}

// The engine's clock: real time, plus what run_turn has skipped. The engine reads it after every sample, so this is
// also where cancelling is noticed.
double Session::now() {
  check_cancelled();
  return clock_.now() + ahead_;
}

void Session::check_size(std::size_t objects, const TrailSettings& settings) {
  const OwnState::Turn in_force(state_);
  const double per_frame = settings.samples_per_frame.is_none() ? static_cast<double>(_get_pref_samples())
                                                                : settings.samples_per_frame.to_float();
  const double frames = scene_.settings.playback_max() - scene_.settings.playback_min();
  const double samples = std::floor(frames * std::max(1.0, per_frame)) + 1.0;
  if (!(samples >= 2.0))
    throw Failure(Failure::Kind::range_too_short, "the range " + number_text(scene_.settings.playback_min()) + " to " +
                                                      number_text(scene_.settings.playback_max()) +
                                                      " holds fewer than two samples");
  if (samples * static_cast<double>(objects) > kMaxSamples)
    throw Failure(Failure::Kind::too_many_samples, counted(objects, "trail") + " of " + number_text(samples) +
                                                       " samples each are more than 100 million samples in all");
}

std::vector<Trail> Session::create(const std::vector<NodeId>& objects, const TrailSettings& settings,
                                   const std::function<void()>& after_turn) {
  const OwnState::Turn in_force(state_);
  std::unordered_map<NodeId, Trail> by_source;
  const auto all_turns = turns(scene_, objects);
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
    if (found == by_source.end())
      throw Failure(Failure::Kind::no_trail, scene_.names.long_name(object) + ": no trail was made of it");
    result.push_back(found->second);
  }
  return result;
}

void Session::convert_to_nurbs(std::int64_t degree) {
  const OwnState::Turn in_force(state_);
  vantorelix::convert_to_nurbs(degree);
}

std::vector<Trail> Session::followed() {
  const OwnState::Turn in_force(state_);
  return registered_trails();
}

void Session::remove(const std::vector<Trail>& trails) {
  const OwnState::Turn in_force(state_);
  for (const Trail& trail : trails) {
    if (!scene_.nodes.exists(trail.viz)) continue;
    _REGISTRY.erase(scene_.names.unique_name(trail.viz));
    scene_.nodes.remove(trail.viz);
  }
}

void Session::edit(const std::function<void(standalone::Host&)>& change) {
  const OwnState::Turn in_force(state_);
  change(host_);
}

bool Session::run_idle_once() {
  const OwnState::Turn in_force(state_);
  try {
    return host_.run_idle_once();
  } catch (...) {
    _stop_rebuild_queue();
    throw;
  }
}

QueueState Session::queue_state() {
  const OwnState::Turn in_force(state_);
  QueueState state{_PENDING};
  if (!_WORK) return state;
  state.generation = _WORK->gen;
  state.item = _WORK->k;
  state.items = _WORK->items.size();
  if (_WORK->k < _WORK->items.size()) {
    const auto item = _WORK->items.at(_WORK->k);
    state.sample = item->i;
    state.key = item->ki;
  }
  return state;
}

void Session::run_turn(const std::vector<NodeId>& objects, const TrailSettings& settings) {
  host_.select(objects);
  create_trail(settings.samples_per_frame, settings.line_width, settings.point_size, settings.show_line,
               settings.show_dots, settings.ghost, settings.color_mode);
  settle();
}

void Session::settle() {
  const OwnState::Turn in_force(state_);
  // Nobody edits meanwhile, so the clock skips the quiet time that the engine would wait after an edit.
  ahead_ += _DEBOUNCE;
  run_idle_loop();
  if (!failures_.empty()) throw Failure(Failure::Kind::no_trail, std::exchange(failures_, {}).front());
}

void Session::run_idle_loop() {
  while (run_idle_once())
    if (_WORK && options_.progress) options_.progress(_WORK->k + 1, _WORK->items.size());
}

// Takes the trails out of the registry and off their names, as a user who renames the nodes would: what they hold
// stays, and the next trail of that name leaves them alone.
void Session::detach(const std::vector<Trail>& trails) {
  for (const Trail& trail : trails) {
    const std::string name = scene_.names.unique_name(trail.viz);
    _REGISTRY.erase(name);
    scene_.nodes.rename(trail.viz, std::string(scene_.names.short_name(trail.viz)) + "_1");
  }
}

std::vector<Trail> Session::registered_trails() const {
  std::vector<Trail> trails;
  for (const auto& [viz, settings] : _REGISTRY)
    trails.push_back({scene_.names.require(viz), scene_.names.require(*settings->at("source").as_text()),
                      _samples_per_frame(settings->at("samples_per_frame"))});
  return trails;
}

}  // namespace vantorelix::session
