// The measures of a report's trails, and what changed of them between two scenes.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "session/measures/changes.h"
#include "session/report.h"

namespace vantorelix::session {

struct Measured {
  Measures measures;
  std::optional<Measures> second = {};      // of the same object in the second scene
  std::vector<MeasureChange> changes = {};  // the largest first; none where both move alike but for rounding
};

// By trail.
std::vector<Measured> measure(const TrailReport& report);

// The trails that changed, the one with the largest change first.
std::vector<std::size_t> ranked_by_change(const std::vector<Measured>& trails);

// Every name that a measure bears in files, with its unit.
std::vector<std::pair<std::string, std::string>> measure_units(const TrailReport& report);
// The values of these, in the same order.
std::vector<double> measure_values(const Measures& measures, double fps);

}  // namespace vantorelix::session
