#include "base/json_writer.h"
#include "cli/output/measure_writers.h"
#include "cli/output/writers.h"

namespace vantorelix::cli {

namespace {

void write_change(JsonWriter& json, const session::MeasureChange& change) {
  json.field("measure", change.field->name);
  json.field("before", change.before);
  json.field("after", change.after);
  json.field("change", change.change);
}

void write_comparison(JsonWriter& json, const session::Comparison& compare, const session::Measured& measured) {
  json.field("source", compare.source);
  json.field("largest", compare.largest);
  json.field("frame", compare.frame);
  json.key("changes");
  json.list({}, [&] {
    for (const auto& change : measured.changes) json.object({}, [&] { write_change(json, change); });
  });
  json.key("measures");
  write_measures(json, *measured.second);
}

void write_trail(JsonWriter& json, const session::TrailView& trail, const session::Measured& measured, bool compared) {
  json.field("source", trail.source);
  json.field("name", trail.name);
  json.field("node", trail.node);
  json.field("parent", trail.parent);
  json.field("warnings", trail.warnings);
  json.key("measures");
  write_measures(json, measured.measures);
  if (!compared) return;
  json.key("compare");
  if (trail.compare)
    json.object({}, [&] { write_comparison(json, *trail.compare, measured); });
  else
    json.value(std::optional<double>());
}

void write_changes(JsonWriter& json, const session::TrailReport& report, const std::vector<session::Measured>& all) {
  json.key("changes");
  json.list(JsonLayout::lines(4), [&] {
    for (const std::size_t trail : session::ranked_by_change(all))
      json.object({}, [&] {
        json.field("source", report.trails[trail].source);
        write_change(json, all[trail].changes.front());
      });
  });
}

}  // namespace

void write_measures_json(TextSink& out, const session::TrailReport& report, const std::vector<session::Measured>& all) {
  JsonWriter json(out);
  json.object(JsonLayout::lines(2), [&] {
    write_scene_fields(json, report);
    if (report.compared) write_changes(json, report, all);
    json.key("trails");
    json.list(JsonLayout::lines(4), [&] {
      for (std::size_t i = 0; i < all.size(); ++i)
        json.object(JsonLayout::lines(6),
                    [&] { write_trail(json, report.trails[i], all[i], report.compared.has_value()); });
    });
  });
  out << '\n';
}

}  // namespace vantorelix::cli
