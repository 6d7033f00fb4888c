#include <array>

#include "base/json_writer.h"
#include "cli/output/writers.h"
#include "session/tables/report_json.h"

namespace vantorelix::cli {

namespace {

void write_comparison(JsonWriter& json, const session::Comparison& compare) {
  json.field("source", compare.source);
  json.field("distances", compare.distances);
  json.field("largest", compare.largest);
  json.field("frame", compare.frame);
}

void write_trail(JsonWriter& json, const session::TrailView& trail, const session::TrailReport& report) {
  write_trail_fields(json, trail);
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
  write_units(json, report);
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
