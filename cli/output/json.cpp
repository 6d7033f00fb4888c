#include <array>

#include "base/json_writer.h"
#include "cli/output/writers.h"

namespace vantorelix::cli {

namespace {

void write_comparison(JsonWriter& json, const session::Comparison& compare) {
  json.field("source", compare.source);
  json.field("distances", compare.distances);
  json.field("largest", compare.largest);
  json.field("frame", compare.frame);
}

void write_trail(JsonWriter& json, const session::TrailView& trail, bool compared) {
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
  if (!compared) return;
  json.key("compare");
  if (trail.compare)
    json.object({}, [&] { write_comparison(json, *trail.compare); });
  else
    json.value(std::optional<double>());
}

}  // namespace

void write_json(TextSink& out, const session::TrailReport& report) {
  JsonWriter json(out);
  json.object(JsonLayout::lines(2), [&] {
    json.field("scene", report.scene);
    json.field("fps", report.fps);
    json.field("range", std::array{report.first, report.last});
    json.field("unit", report.unit);
    json.field("up_axis", std::string(1, report.up_axis));
    if (report.compared) {
      json.key("compare");
      json.object({}, [&] {
        json.field("scene", report.compared->scene);
        json.field("take", report.compared->take);
      });
    }
    json.key("trails");
    json.list(JsonLayout::lines(4), [&] {
      for (const session::TrailView& trail : report.trails)
        json.object(JsonLayout::lines(6), [&] { write_trail(json, trail, report.compared.has_value()); });
    });
  });
  out << '\n';
}

}  // namespace vantorelix::cli
