#include <array>

#include "base/json_writer.h"
#include "cli/output/writers.h"
#include "session/measures/kinematics.h"
#include "session/measuring.h"

namespace vantorelix::cli {

namespace {

void write_comparison(JsonWriter& json, const session::Comparison& compare) {
  json.field("source", compare.source);
  json.field("distances", compare.distances);
  json.field("largest", compare.largest);
  json.field("frame", compare.frame);
}

// As docs/cli.md names them. A frame is 1 / fps seconds.
void write_speeds(JsonWriter& json, const session::TrailView& trail, double fps) {
  const session::Travel measure = session::travel_of(session::path_of(trail, fps));
  json.field("length", measure.length);
  json.field("mean_speed", measure.mean_speed);
  json.field("top_speed", measure.top_speed);
  json.field("mean_speed_per_frame", measure.mean_speed / fps);
  json.field("top_speed_per_frame", measure.top_speed / fps);
}

void write_trail(JsonWriter& json, const session::TrailView& trail, const session::TrailReport& report) {
  json.field("viz", trail.viz);
  json.field("source", trail.source);
  json.field("name", trail.name);
  json.field("node", trail.node);
  json.field("parent", trail.parent);
  json.field("samples_per_frame", trail.samples_per_frame);
  json.field("color_mode", trail.color_mode);
  json.field("start_frame", trail.start_frame);
  json.field("frame_step", trail.frame_step);
  json.field("points", *trail.points);
  json.field("colors", *trail.colors);
  json.field("key_times", trail.key_times);
  json.field("key_points", *trail.key_points);
  json.field("key_colors", *trail.key_colors);
  json.field("warnings", trail.warnings);
  write_speeds(json, trail, report.fps);
  json.key("measures");
  write_measures(json, session::measures_of(trail, report));
  if (!report.compared) return;
  json.key("compare");
  if (trail.compare)
    json.object({}, [&] { write_comparison(json, *trail.compare); });
  else
    json.value(std::optional<double>());
}

}  // namespace

void write_scene_fields(JsonWriter& json, const session::TrailReport& report) {
  json.field("scene", report.scene);
  json.field("fps", report.fps);
  json.field("range", std::array{report.first, report.last});
  json.field("unit", report.unit);
  json.field("up_axis", std::string(1, report.up_axis));
  json.key("units");
  json.object({}, [&] {
    for (const auto& [name, unit] : session::measure_units(report)) json.field(name, unit);
  });
  if (!report.compared) return;
  json.key("compare");
  json.object({}, [&] {
    json.field("scene", report.compared->scene);
    json.field("take", report.compared->take);
  });
}

void write_json(TextSink& out, const session::TrailReport& report) {
  JsonWriter json(out);
  json.object(JsonLayout::lines(2), [&] {
    write_scene_fields(json, report);
    json.key("trails");
    json.list(JsonLayout::lines(4), [&] {
      for (const session::TrailView& trail : report.trails)
        json.object(JsonLayout::lines(6), [&] { write_trail(json, trail, report); });
    });
  });
  out << '\n';
}

}  // namespace vantorelix::cli
