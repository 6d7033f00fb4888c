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

  session::TrailSettings settings() const;
};
// Everything above but the scene itself.
void add_trail_options(CLI::App& command, TrailOptions& options);

// Makes the trails, beside those of a second scene where one was named, and hands them to `use`. With `statics` the
// report has what stands around them too. Warns of trails that may not be exact.
void with_trails(const TrailOptions& options, bool statics, Terminal& terminal,
                 const std::function<void(const session::TrailReport&)>& use);

}  // namespace vantorelix::cli
