// The files that `trails` writes.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "base/json_writer.h"
#include "base/text_sink.h"
#include "session/report.h"

namespace vantorelix::cli {

// The fields that a JSON begins with: scene, fps, range, unit, up_axis, units, compare where there is a second scene.
void write_scene_fields(JsonWriter& json, const session::TrailReport& report);

// One object: the scene's fields, trails. Numbers read back
// to the same double; a value that is not finite is null.
void write_json(TextSink& out, const session::TrailReport& report);

// What a line a sample may have besides.
enum class CsvColumn {
  speed,  // units a second on the way to the next sample
  key,    // how many of the object's keys lie at the sample, or nearer to it than to any other
};
// The one of this name; nothing for any other.
std::optional<CsvColumn> csv_column(std::string_view name);

// "source,sample,frame,x,y,z,r,g,b" and the further columns, a line a sample; a value that is not finite is an empty
// field.
void write_csv(TextSink& out, const session::TrailReport& report, const std::vector<CsvColumn>& columns = {});

// The table that people read on standard output.
std::string trail_table(const session::TrailReport& report);

}  // namespace vantorelix::cli
