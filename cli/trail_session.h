// The engine's own road from a selection to finished trails, on the standalone host.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cli/terminal.h"
#include "host/value.h"
#include "standalone/host/host.h"
#include "standalone/host/wall_clock.h"

namespace vantorelix::cli {

// What create_trail is given; none leaves it to the preferences.
struct TrailSettings {
  host::Value samples_per_frame, line_width, point_size, show_line, show_dots, ghost, color_mode;
};

// Real time that can be put forward. Read after every sample, so it is also where an interrupt is noticed.
class WorkClock {
 public:
  double now();
  void skip(double seconds) { ahead_ += seconds; }

 private:
  standalone::WallClock clock_;
  double ahead_ = 0.0;
};

// One finished trail: the viz node's transform and the object that it follows.
struct Trail {
  standalone::NodeId viz;
  standalone::NodeId source;
  host::Value samples_per_frame;
};

// One host with the engine initialised on it. The engine's state is the module's own: one session at a time.
class TrailSession {
 public:
  TrailSession(standalone::Scene scene, const std::optional<std::filesystem::path>& preferences, Terminal& terminal);

  standalone::Host& host() { return *host_; }
  standalone::Scene& scene() { return host_->scene(); }

  // Throws Failure when so many samples would not fit into memory.
  void check_size(std::size_t objects, const TrailSettings& settings);

  // Runs create_trail for the objects and the idle loop until every trail is exact. The engine keeps one trail for
  // a short name, so objects that share theirs are done in turns; after each turn `after_turn` is called while its
  // trails are registered. In the order of `objects`. Throws Failure when a trail could not be computed.
  std::vector<Trail> create(const std::vector<standalone::NodeId>& objects, const TrailSettings& settings,
                            const std::function<void()>& after_turn = {});

  // What the engine said to the user since the last call.
  std::vector<std::string> take_messages();

 private:
  void run_turn(const std::vector<standalone::NodeId>& objects, const TrailSettings& settings);
  void run_idle_loop();
  void detach(const std::vector<Trail>& trails);
  std::vector<Trail> registered_trails();

  Terminal& terminal_;
  WorkClock clock_;
  std::vector<std::string> messages_;
  std::vector<std::string> failures_;  // the engine's warnings
  std::optional<standalone::Host> host_;
};

}  // namespace vantorelix::cli
