// What `measure` prints and writes.
#pragma once

#include <string>
#include <vector>

#include "base/text_sink.h"
#include "session/report.h"
#include "session/tables/measuring.h"

namespace vantorelix::cli {

// Each takes the measures of the report's trails.

// One object: the scene's fields; beside a second scene `changes`, the largest change of each trail that changed, worst
// first; trails.
void write_measures_json(TextSink& out, const session::TrailReport& report, const std::vector<session::Measured>& all);

// "source" and the names of the measures, a line a trail; beside a second scene also its path there, its largest
// change, and each measure there. What is not known is an empty field.
void write_measures_csv(TextSink& out, const session::TrailReport& report, const std::vector<session::Measured>& all);

// The table that people read on standard output: the few measures that say most.
std::string measures_table(const session::TrailReport& report, const std::vector<session::Measured>& all);
// Beside a second scene: what changed most of each trail, worst first.
std::string changes_table(const session::TrailReport& report, const std::vector<session::Measured>& all);

}  // namespace vantorelix::cli
