// One session replayed with each host call failing in turn: whatever breaks, the engine's state stays one that its own
// rules allow, and the next edit makes every trail exact again.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "engine/colour/colour.h"
#include "engine/commands/apply_preferences.h"
#include "engine/commands/clear.h"
#include "engine/commands/create.h"
#include "engine/commands/display.h"
#include "engine/commands/nurbs.h"
#include "engine/state/constants.h"
#include "engine/state/preferences.h"
#include "host/error.h"
#include "tests/contract/session.h"

namespace vantorelix::contract {
namespace {

using standalone::Channel;
using standalone::NodeId;
using standalone::Scene;
using support::Failure;

constexpr double kFirst = 1.0;
constexpr double kLast = 8.0;

// An arm that turns, a hand on it that slides, and a ball of its own.
Scene scene_of_three() {
  Scene scene;
  scene.settings.set_playback_range(kFirst, kLast);
  const NodeId arm = scene.nodes.create("transform", "arm");
  const NodeId hand = scene.nodes.create("transform", "hand", arm);
  const NodeId ball = scene.nodes.create("transform", "ball");
  scene.curves.set_key(arm, Channel::rotateZ, 1.0, 0.0);
  scene.curves.set_key(arm, Channel::rotateZ, 8.0, 1.5);
  scene.attributes.set_channel(arm, Channel::translateY, 2.0);
  scene.curves.set_key(hand, Channel::translateX, 1.0, 3.0);
  scene.curves.set_key(hand, Channel::translateX, 4.0, 5.0);
  scene.curves.set_key(ball, Channel::translateZ, 2.0, -1.0);
  scene.curves.set_key(ball, Channel::translateZ, 6.5, 4.0);
  return scene;
}

// How a call ended: what left it, if anything.
enum class Ending { normal, error, interrupt };

Ending ending_of(const std::function<void()>& call) {
  try {
    call();
    return Ending::normal;
  } catch (const std::exception&) {
    return Ending::error;
  } catch (const host::Interrupt&) {
    return Ending::interrupt;
  }
}

// --- the rules of the state ---------------------------------------------------------------------------------------

void expect_consistent_item(const WorkItem& it, bool untouched) {
  EXPECT_EQ(it.pos->size(), it.i);
  EXPECT_EQ(it.kpos->size(), it.ki);
  EXPECT_LE(it.i, it.times ? it.times->size() : 0u);
  EXPECT_LE(it.ki, it.ktimes ? it.ktimes->size() : 0u);
  EXPECT_TRUE(it.ki == 0 || it.i == it.times->size()) << "keys before all samples are taken";
  EXPECT_TRUE(!untouched || (!it.times && !it.ktimes && !it.sampler)) << "touched before its turn";
}

void expect_consistent_queue() {
  EXPECT_FALSE(_REBUILDING) << "outside the rebuild itself";
  EXPECT_TRUE(_PENDING || !_WORK) << "work that no step will take up";
  if (!_WORK) return;
  EXPECT_LE(_WORK->gen, _GEN);
  EXPECT_LT(_WORK->k, _WORK->items.size()) << "finished work is put away";
  for (std::size_t n = _WORK->k; n < _WORK->items.size(); ++n)
    expect_consistent_item(*_WORK->items.at(n), n > _WORK->k);
}

void expect_consistent_registry(Session& session) {
  for (const auto& [viz, settings] : _REGISTRY) {
    EXPECT_NE(session.scene().names.find(viz), standalone::kNoNode) << viz;
    EXPECT_EQ(settings->size(), 3u);
    EXPECT_TRUE(settings->at("source").as_text());
    EXPECT_TRUE(settings->at("samples_per_frame").as_int());
    const host::Value& ref = settings->at("ref");
    EXPECT_TRUE(ref.is_none() || (ref.as_list() && (*ref.as_list())->size() == 1)) << ref.repr();
  }
}

void expect_consistent_callbacks(Session& session) {
  if (!_CB_ID) return;
  const auto* identifiers = std::get_if<std::vector<host::Value>>(&*_CB_ID);
  ASSERT_TRUE(identifiers);
  EXPECT_GE(identifiers->size(), 1u);
  EXPECT_LE(identifiers->size(), 3u);
  EXPECT_LE(identifiers->size(), session.host().callback_count());
}

// Holds between any two calls into the engine.
void expect_consistent_state(Session& session) {
  expect_consistent_queue();
  expect_consistent_registry(session);
  expect_consistent_callbacks(session);
}

// A step that let an error out has left the queue waiting for nobody.
bool is_stuck(Session& session) { return _PENDING && session.host().idle_count() == 0; }

// --- exactness ----------------------------------------------------------------------------------------------------

// What the viz node must hold, computed without the engine's sampling.
void expect_exact(Session& session, const std::string& viz, Settings& settings) {
  SCOPED_TRACE(viz);
  const Scene& scene = session.scene();
  const NodeId source = scene.names.require(*settings.at("source").as_text());
  const auto density = static_cast<double>(*settings.at("samples_per_frame").as_int());
  std::vector<Vector> positions;
  for (int i = 0; i <= static_cast<int>((kLast - kFirst) * density); ++i)
    positions.push_back(scene.evaluation.world_matrix(source, kFirst + i / density).translation());
  std::vector<double> keys = scene.curves.key_times(source);
  std::vector<Vector> key_positions, key_times;
  for (const double t : keys) {
    key_positions.push_back(scene.evaluation.world_matrix(source, t).translation());
    key_times.push_back({t, 0.0, 0.0});
  }
  EXPECT_EQ(*session.vectors(viz, "points"), positions);
  EXPECT_EQ(*session.vectors(viz, "colors"), _colors_from_positions(positions, settings.at("ref")).first);
  EXPECT_EQ(*session.vectors(viz, "keyPoints"), key_positions);
  EXPECT_EQ(*session.vectors(viz, "keyColors"), std::vector<Vector>(keys.size(), {1.0, 1.0, 1.0}));
  EXPECT_EQ(*session.vectors(viz, "keyTimes"), key_times);
}

// --- the script ---------------------------------------------------------------------------------------------------

void select_all(Session& session) {
  Scene& scene = session.scene();
  session.host().select({scene.names.require("arm"), scene.names.require("hand"), scene.names.require("ball")});
}

// Keys stay in order of time, one curve an object, so that key times need no sorting to compare.
void edit(Session& session, double value) {
  Scene& scene = session.scene();
  const NodeId hand = scene.names.require("hand");
  scene.curves.set_key(scene.curves.driving_curve(hand, Channel::translateX), 4.0, value);
}

enum class Kind { command, edit, idle };

// One thing that the user or the host does. A command may fail in the user's face; an edit and a deferred step
// may not.
struct Action {
  const char* name;
  Kind kind;
  std::function<void(Session&)> run;
};

std::vector<Action> steps(std::size_t n) {
  return std::vector<Action>(n, {"step", Kind::idle, [](Session& session) { session.host().run_idle_once(); }});
}

Action pause(double seconds) {
  return {"pause", Kind::idle, [seconds](Session& session) { session.wait(seconds); }};
}

Action command(const char* name, void (*run)()) {
  return {name, Kind::command, [run](Session&) { run(); }};
}

std::vector<Action> script() {
  const Action select = {"select", Kind::edit, select_all};
  const Action first_edit = {"edit", Kind::edit, [](Session& session) { edit(session, 6.0); }};
  const Action second_edit = {"edit again", Kind::edit, [](Session& session) { edit(session, 7.0); }};
  const Action create = command("create", [] { create_trail(); });
  const Action denser = command("density", [] {
    _set_pref_samples(2);
    apply_prefs_to_existing_trails(true);
  });
  std::vector<Action> actions = {select, create, pause(0.25)};
  const auto add = [&](const std::vector<Action>& more) { actions.insert(actions.end(), more.begin(), more.end()); };
  add(steps(30));
  add({first_edit, first_edit});
  add(steps(1));
  add({pause(0.25)});
  add(steps(8));
  add({second_edit, pause(0.25)});
  add(steps(30));
  add({denser, pause(0.25)});
  add(steps(40));
  add({command("colour", [] { set_color_mode(1); }), command("ghost", [] { toggle_ghost(); }),
       command("nurbs", [] { convert_to_nurbs(); }), command("clear", [] { clear_trails(); })});
  add(steps(1));
  return actions;
}

// Which call fails, and how.
struct Fault {
  std::size_t call = 0;  // none
  Failure failure = Failure::error;
  std::string line = {};
  bool warnings_fail = false;  // all of them, besides the call
};

// What may leave an edit or a step: an interrupt from anywhere; an error where the clock is read or the playback
// range asked for outside any one trail's work.
void expect_allowed(const Action& action, const Fault& fault, Ending ending) {
  if (action.kind == Kind::command || ending == Ending::normal) return;
  if (ending == Ending::interrupt) {
    EXPECT_EQ(fault.failure, Failure::interrupt);
    return;
  }
  const bool clock = fault.line == "time.time()";
  const bool range = fault.line.rfind("cmds.playbackOptions(", 0) == 0;
  EXPECT_TRUE(clock || (range && action.kind == Kind::idle)) << fault.line << " let out of " << action.name;
}

// True for the report of an error that left a message callback.
bool take_callback_reports(Session& session) {
  bool any = false;
  for (const std::string& text : session.warnings()) any = any || text.rfind("callback _on_anim_edit failed", 0) == 0;
  session.warnings().clear();
  return any;
}

// Where a session with a fault ends: with the action in which it struck, or before the trails are cleared.
enum class Until { the_fault, clearing, the_end };

void play(Session& session, const Fault& fault, Until until) {
  if (fault.call) session.recorder().fail_call(fault.call, fault.failure);
  if (fault.warnings_fail) session.recorder().fail_line("cmds.warning(");
  bool may_be_stuck = false;
  for (const Action& action : script()) {
    SCOPED_TRACE(action.name);
    const bool failed = fault.call && session.recorder().call_count() >= fault.call;
    if (failed && until == Until::the_fault) return;
    if (failed && until == Until::clearing && action.name == std::string_view("clear")) return;
    Ending ending = ending_of([&] { action.run(session); });
    if (take_callback_reports(session)) ending = Ending::error;
    expect_allowed(action, fault, ending);
    expect_consistent_state(session);
    may_be_stuck =
        may_be_stuck || ending == Ending::interrupt || (ending == Ending::error && action.kind == Kind::idle);
    EXPECT_TRUE(may_be_stuck || !is_stuck(session)) << "the queue waits for a step that nobody has queued";
  }
}

// What a user does after a mishap: clear where the queue is stuck, create where nothing listens; then edit.
void recover(Session& session) {
  session.recorder().stop_failing();
  if (is_stuck(session)) clear_trails();
  if (!_CB_ID) {
    select_all(session);
    create_trail();
  }
  edit(session, 9.0);
  session.wait(0.25);
  EXPECT_LT(session.host().run_idle(1000), 1000u) << "a queue that never ends";
  EXPECT_FALSE(_PENDING);
  EXPECT_FALSE(_WORK);
  EXPECT_EQ(session.host().idle_count(), 0u);
  EXPECT_FALSE(_REGISTRY.empty());
  for (const auto& [viz, settings] : _REGISTRY) expect_exact(session, viz, *settings);
  EXPECT_TRUE(session.warnings().empty()) << session.warnings().front();
}

// A reading costs 7 ms: the 0.15 s of creation end among the samples of the last object, and a step takes one or two.
constexpr double kSecondsAReading = 0.007;

std::vector<std::string> calls_of_the_session() {
  Session session(scene_of_three(), kSecondsAReading);
  play(session, {}, Until::the_end);
  return session.recorder().log();
}

void replay_with(const Fault& fault) {
  SCOPED_TRACE("call " + std::to_string(fault.call) + ": " + fault.line);
  for (const Until until : {Until::the_fault, Until::clearing}) {
    Session session(scene_of_three(), kSecondsAReading);
    session.recorder().set_recording(false);
    play(session, fault, until);
    recover(session);
  }
}

TEST(FaultSweep, session_without_a_fault_does_all_it_is_meant_to) {
  Session session(scene_of_three(), kSecondsAReading);
  play(session, {}, Until::the_end);
  const auto& recorder = session.recorder();
  EXPECT_TRUE(_REGISTRY.empty());
  EXPECT_EQ(recorder.count("cmds.createNode("), 3u);
  EXPECT_EQ(recorder.count("cmds.inViewMessage(amg='Building trail for 3 object(s)...'"), 1u);
  EXPECT_EQ(recorder.count("cmds.inViewMessage(amg='Created 3 standalone"), 1u);
  EXPECT_GT(recorder.count("cmds.evalDeferred("), 30u) << "rebuilds take many steps";
  EXPECT_EQ(recorder.count("cmds.warning("), 0u);
  recover(session);
}

TEST(FaultSweep, every_call_may_fail_once) {
  const auto calls = calls_of_the_session();
  for (std::size_t k = 1; k <= calls.size() && !HasFailure(); ++k) replay_with({k, Failure::error, calls[k - 1]});
  RecordProperty("calls", static_cast<int>(calls.size()));
}

TEST(FaultSweep, every_fifth_call_may_fail_while_no_warning_can_be_shown) {
  const auto calls = calls_of_the_session();
  for (std::size_t k = 1; k <= calls.size() && !HasFailure(); k += 5)
    replay_with({k, Failure::error, calls[k - 1], true});
}

TEST(FaultSweep, every_seventh_call_may_be_interrupted) {
  const auto calls = calls_of_the_session();
  for (std::size_t k = 1; k <= calls.size() && !HasFailure(); k += 7)
    replay_with({k, Failure::interrupt, calls[k - 1]});
}

}  // namespace
}  // namespace vantorelix::contract
