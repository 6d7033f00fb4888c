#include "session/live_run.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <thread>

#include "session/report.h"

namespace vantorelix::session {

namespace {

using Clock = std::chrono::steady_clock;

double seconds_since(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

// One idle call. False when it did no work.
bool run_step(Session& session, LiveReport& report) {
  const QueueState before = session.queue_state();
  const auto start = Clock::now();
  session.run_idle_once();
  const double seconds = seconds_since(start);
  if (session.queue_state() == before) {
    ++report.waits;
    return false;
  }
  ++report.steps;
  report.total_steps += seconds;
  report.longest_step = std::max(report.longest_step, seconds);
  return true;
}

// Sleeps as long as an idle host would: not past the next event, and at most a moment.
void rest(double until_next_event) {
  std::this_thread::sleep_for(std::chrono::duration<double>(std::clamp(until_next_event, 0.0, 0.001)));
}

// How far apart two coordinates are; 0 for two that are both no number.
double distance(double a, double b) {
  if (a == b || (std::isnan(a) && std::isnan(b))) return 0.0;
  const double d = std::abs(a - b);
  return std::isnan(d) ? std::numeric_limits<double>::infinity() : d;
}

void compare(const Vector& have, const Vector& want, LiveReport& report) {
  ++report.samples;
  const double d = std::max({distance(have.x, want.x), distance(have.y, want.y), distance(have.z, want.z)});
  if (d > 0.0) ++report.wrong;
  report.largest_difference = std::max(report.largest_difference, d);
}

void check(const Session& session, const std::vector<Trail>& trails, LiveReport& report) {
  const standalone::Scene& scene = session.scene();
  const TrailReport held = read_trails(scene, trails, {});
  for (std::size_t t = 0; t < trails.size(); ++t) {
    session.check_cancelled();
    const TrailView& trail = held.trails[t];
    const auto truth = [&](double frame) {
      return scene.evaluation.world_matrix(trails[t].source, frame).translation();
    };
    for (std::size_t i = 0; i < trail.points->size(); ++i)
      compare((*trail.points)[i], truth(trail.start_frame + static_cast<double>(i) * trail.frame_step), report);
    for (std::size_t k = 0; k < trail.key_times.size(); ++k)
      compare((*trail.key_points)[k], truth(trail.key_times[k]), report);
  }
}

}  // namespace

LiveReport run_live(Session& session, const std::vector<Trail>& trails, const std::vector<LiveEvent>& events) {
  LiveReport report;
  report.trails = trails.size();
  const auto start = Clock::now();
  std::size_t next = 0;
  double exact = 0.0;
  while (next < events.size() || session.idle_count() != 0) {
    session.check_cancelled();
    for (; next < events.size() && events[next].at <= seconds_since(start); ++next) {
      const double begun = seconds_since(start);
      session.edit([&](standalone::Host& host) { apply(events[next], host); });
      if (!events[next].is_edit()) continue;
      ++report.edits;
      report.last_edit = seconds_since(start);
      report.longest_edit = std::max(report.longest_edit, report.last_edit - begun);
    }
    const double until_next = next < events.size() ? events[next].at - seconds_since(start) : 1.0;
    if (session.idle_count() != 0 && run_step(session, report))
      exact = seconds_since(start);
    else
      rest(until_next);
  }
  report.last_to_exact = report.edits == 0 ? 0.0 : std::max(exact, report.last_edit) - report.last_edit;
  check(session, trails, report);
  return report;
}

}  // namespace vantorelix::session
