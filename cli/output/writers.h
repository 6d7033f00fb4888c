// The files that `trails` writes.
#pragma once

#include "base/text_sink.h"
#include "session/report.h"

namespace vantorelix::cli {

// One object: scene, fps, range, unit, up_axis, compare where there is a second scene, trails. Numbers read back to the
// same double; a value that is not finite is null.
void write_json(TextSink& out, const session::TrailReport& report);

// "source,sample,frame,x,y,z,r,g,b", a line a sample; a value that is not finite is an empty field.
void write_csv(TextSink& out, const session::TrailReport& report);

// The table that people read on standard output.
std::string trail_table(const session::TrailReport& report);

}  // namespace vantorelix::cli
