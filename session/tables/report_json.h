// What a report's trails are called in JSON, wherever that is written.
#pragma once

#include "base/json_writer.h"
#include "session/report.h"

namespace vantorelix::session {

// Fields of the object that `json` writes, as docs/cli.md names them.

// viz, source, name, node, parent, samples_per_frame, color_mode, start_frame, frame_step.
void write_trail_fields(JsonWriter& json, const TrailView& trail);
// length, mean_speed, top_speed, and the speeds per frame. A frame is 1 / fps seconds.
void write_speeds(JsonWriter& json, const TrailView& trail, double fps);
// name, matrix (16 numbers, row vectors), low, high.
void write_static(JsonWriter& json, const StaticBox& box);
// units: an object of the unit of each measure.
void write_units(JsonWriter& json, const TrailReport& report);

}  // namespace vantorelix::session
