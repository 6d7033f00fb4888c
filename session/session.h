// A sitting with one scene: its host and the engine on it, from chosen objects to finished trails and live edits.
//
// session.cpp is the only file here that uses the engine's names, functions and state alike:
//   _initialise, OwnState        a state of its own for each session, in force while the session is at work
//   create_trail, convert_to_nurbs, _stop_rebuild_queue
//   _REGISTRY                    read for the trails that were made; entries of finished turns are erased
//   _PENDING, _WORK              read for how far the rebuild is
//   _get_pref_samples, _samples_per_frame, _DEBOUNCE
//   OPT_...                      the names of the preferences
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "engine/state/own_state.h"
#include "host/value.h"
#include "standalone/host/host.h"
#include "standalone/host/wall_clock.h"

namespace vantorelix::session {

// What create_trail is given; none leaves it to the preferences.
struct TrailSettings {
  host::Value samples_per_frame, line_width, point_size, show_line, show_dots, ghost, color_mode;
};

// One finished trail: the viz node's transform and the object that it follows.
struct Trail {
  standalone::NodeId viz;
  standalone::NodeId source;
  std::int64_t samples_per_frame;
};

struct Options {
  std::optional<std::filesystem::path> preferences;  // JSON file of option variables
  // Asked after every sample: true ends the work with host::Interrupt.
  std::function<bool()> cancelled;
  // Told while create() samples: trail `number` of `count`, from 1.
  std::function<void(std::size_t number, std::size_t count)> progress;
};

// Where the rebuild stands: two that are equal have no work between them.
struct QueueState {
  bool pending = false;
  std::int64_t generation = -1;
  std::size_t item = 0, items = 0, sample = 0, key = 0;

  bool operator==(const QueueState&) const = default;
};

// Any number of sessions may be open on one thread and be called by turns, from callbacks of each other too, but for
// one that is already at work further out. When a call throws, this session and all others stay usable.
class Session {
 public:
  explicit Session(standalone::Scene scene, Options options = {});

  const standalone::Scene& scene() const { return scene_; }

  // What is wrong with the preferences, a text each: names that are not a preference's, values that are not numbers.
  // None of these has an effect.
  std::vector<std::string> preference_faults() const;

  // Whether these settings or the preferences name a colour mode; otherwise trails have the engine's default.
  bool names_color_mode(const TrailSettings& settings) const;

  // Throws Failure when the range holds fewer than two samples, or when so many would not fit into memory.
  void check_size(std::size_t objects, const TrailSettings& settings);

  // Runs create_trail for the objects and the idle loop until every trail is exact. The engine keeps one trail for
  // a short name, so objects that share theirs are done in turns; after each turn `after_turn` is called while its
  // trails are registered. In the order of `objects`. Throws Failure when a trail could not be computed.
  std::vector<Trail> create(const std::vector<standalone::NodeId>& objects, const TrailSettings& settings,
                            const std::function<void()>& after_turn = {});
  // A NURBS curve of each registered trail that has enough samples.
  void convert_to_nurbs(std::int64_t degree);

  // The trails that follow edits: those of the last turn of each create(), less those that a later one made anew.
  std::vector<Trail> followed();
  // Ends trails: their nodes go. Those that are gone already are left out.
  void remove(const std::vector<Trail>& trails);

  // The one way to change the scene or its host: the trails follow in idle calls.
  void edit(const std::function<void(standalone::Host&)>& change);
  // Runs the idle loop until every trail that is followed is exact, without the quiet time that the engine waits after
  // an edit. Throws Failure when a trail could not be computed.
  void settle();
  // Runs one idle call; false when none is queued. One that throws ends the rebuild until the next edit.
  bool run_idle_once();
  std::size_t idle_count() const { return host_.idle_count(); }
  QueueState queue_state();
  // Throws host::Interrupt once the work is cancelled.
  void check_cancelled() const;

 private:
  double now();
  void run_turn(const std::vector<standalone::NodeId>& objects, const TrailSettings& settings);
  void run_idle_loop();
  void detach(const std::vector<Trail>& trails);
  std::vector<Trail> registered_trails() const;

  Options options_;
  standalone::WallClock clock_;
  double ahead_ = 0.0;                 // seconds by which the engine's clock is ahead of real time
  std::vector<std::string> failures_;  // the engine's warnings
  standalone::Host host_;
  standalone::Scene& scene_;
  OwnState state_;  // declared last: its destructor needs the host
};

}  // namespace vantorelix::session
