// The files that `trails` writes.
#pragma once

#include "cli/output/output_file.h"
#include "cli/trail_report.h"

namespace vantorelix::cli {

// One object: scene, fps, range, unit, up_axis, trails. Numbers read back to the same double; a value that is not
// finite is null.
void write_json(OutputFile& out, const TrailReport& report);

// "source,sample,frame,x,y,z,r,g,b", a line a sample; a value that is not finite is an empty field.
void write_csv(OutputFile& out, const TrailReport& report);

// The table that people read on standard output.
std::string trail_table(const TrailReport& report);

}  // namespace vantorelix::cli
