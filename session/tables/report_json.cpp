#include "session/tables/report_json.h"

#include <array>
#include <cstddef>

#include "session/measures/kinematics.h"
#include "session/tables/measuring.h"

namespace vantorelix::session {

void write_trail_fields(JsonWriter& json, const TrailView& trail) {
  json.field("viz", trail.viz);
  json.field("source", trail.source);
  json.field("name", trail.name);
  json.field("node", trail.node);
  json.field("parent", trail.parent);
  json.field("samples_per_frame", trail.samples_per_frame);
  json.field("color_mode", trail.color_mode);
  json.field("start_frame", trail.start_frame);
  json.field("frame_step", trail.frame_step);
}

void write_speeds(JsonWriter& json, const TrailView& trail, double fps) {
  const Travel travel = travel_of(path_of(trail, fps));
  json.field("length", travel.length);
  json.field("mean_speed", travel.mean_speed);
  json.field("top_speed", travel.top_speed);
  json.field("mean_speed_per_frame", travel.mean_speed / fps);
  json.field("top_speed_per_frame", travel.top_speed / fps);
}

void write_static(JsonWriter& json, const StaticBox& box) {
  std::array<double, 16> matrix{};
  for (std::size_t row = 0; row < 4; ++row)
    for (std::size_t column = 0; column < 3; ++column) matrix[row * 4 + column] = box.world.m[row][column];
  matrix[15] = 1.0;
  json.field("name", box.name);
  json.field("matrix", matrix);
  json.field("low", box.low);
  json.field("high", box.high);
}

void write_units(JsonWriter& json, const TrailReport& report) {
  json.key("units");
  json.object({}, [&] {
    for (const auto& [name, unit] : measure_units(report)) json.field(name, unit);
  });
}

}  // namespace vantorelix::session
