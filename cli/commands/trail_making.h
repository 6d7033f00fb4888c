// What every command does that makes trails to be looked at: its options, and the way from a scene file to a report.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "cli/args/options.h"
#include "cli/commands/comparing.h"
#include "cli/terminal/terminal.h"
#include "session/report.h"
#include "session/session.h"

namespace vantorelix::cli {

struct TrailOptions {
  SceneOptions scene;
  CompareOptions compare;
  std::optional<std::int64_t> samples_per_frame;
  std::string color_mode;
  std::optional<double> line_width, point_size;
  bool no_line = false, no_dots = false;
  std::optional<bool> ghost;
  std::string preferences;
  std::string frame;
  session::ContactRule contacts = session::ContactRule::figure;

  session::TrailSettings settings() const;
};
// Which objects, at which frames, beside which second scene.
void add_motion_options(CLI::App& command, TrailOptions& options);
// Everything above but the scene itself and what counts as contact.
void add_trail_options(CLI::App& command, TrailOptions& options);

// What a report has besides its trails.
struct Surroundings {
  bool statics = false;  // what stands around them
  session::Figures figures = session::Figures::without;
};

// Makes the trails, beside those of a second scene where one was named, and hands them to `use`. Warns of trails that
// may not be exact.
void with_trails(const TrailOptions& options, const Surroundings& around, Terminal& terminal,
                 const std::function<void(const session::TrailReport&)>& use);

}  // namespace vantorelix::cli
