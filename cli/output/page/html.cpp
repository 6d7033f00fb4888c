#include "cli/output/page/html.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/json_writer.h"
#include "cli/output/base64.h"
#include "cli/output/page/page.h"
#include "cli/output/trail_data.h"
#include "session/measures/measures.h"
#include "session/tables/report_json.h"

namespace vantorelix::cli {

namespace {

// A trail or static a line.
constexpr JsonLayout kTrails{"\n", ",\n", ""}, kStatics{"\n", ", \n", ""};

void write_layout(JsonWriter& json, const DataLayout& layout) {
  json.field("key_time_bytes", layout.double_times ? 8 : 4);
  json.key("sections");
  json.object({}, [&] {
    json.field("positions", layout.positions);
    json.field("key_positions", layout.key_positions);
    json.field("key_times", layout.key_times);
    json.field("colors", layout.colors);
    json.field("compared", layout.compared);
  });
  json.field("bytes", layout.bytes);
}

template <class T, class Body>
void write_or_null(JsonWriter& json, const char* name, const std::optional<T>& item, const Body& body) {
  json.key(name);
  item ? json.object({}, [&] { body(*item); }) : json.value(std::optional<double>());
}

// The names and units of what write_measure_values writes.
void write_measure_fields(JsonWriter& json, const session::TrailReport& report) {
  json.key("measures");
  json.list({}, [&] {
    for (const session::MeasureField& field : session::measure_fields())
      json.object({}, [&] {
        json.field("name", field.name);
        json.field("unit", session::unit_of(field.dimension, session::unit_text(report)));
      });
  });
}

void write_measure_values(JsonWriter& json, const session::Measures& measures) {
  std::vector<double> values;
  for (const session::MeasureField& field : session::measure_fields()) values.push_back(measures.*field.value);
  json.field("measures", values);
}

void write_trail(JsonWriter& json, const session::TrailReport& report, const session::TrailView& trail,
                 const TrailLayout& layout) {
  json.field("viz", trail.viz);
  json.field("source", trail.source);
  json.field("name", trail.name);
  json.field("parent", trail.parent);
  json.field("samples_per_frame", trail.samples_per_frame);
  json.field("color_mode", trail.color_mode);
  json.field("start_frame", trail.start_frame);
  json.field("frame_step", trail.frame_step);
  json.field("line_width", trail.line_width);
  json.field("point_size", trail.point_size);
  json.field("show_line", trail.show_line);
  json.field("show_dots", trail.show_dots);
  json.field("ghost", trail.ghost);
  json.field("count", trail.points->size());
  json.field("low", layout.scale.low);
  json.field("step", layout.scale.step);
  json.field("keys", layout.keys);
  json.field("keys_on_samples", layout.keys_on_samples);
  json.field("warnings", trail.warnings);
  write_measure_values(json, session::measures_of(trail, report));
  write_or_null(json, "compare", trail.compare, [&](const session::Comparison& compare) {
    json.field("source", compare.source);
    json.field("low", layout.compared.low);
    json.field("step", layout.compared.step);
  });
}

void write_header(TextSink& out, const session::TrailReport& report, const DataLayout& layout) {
  JsonWriter json(out, JsonWriter::Texts::script);
  json.object({}, [&] {
    json.field("format", 1);
    json.field("scene", report.scene);
    json.field("fps", report.fps);
    json.field("range", std::array{report.first, report.last});
    json.field("current", report.current);
    json.field("unit", report.unit);
    json.field("up_axis", std::string(1, report.up_axis));
    json.field("color_mode_chosen", report.color_mode_chosen);
    write_or_null(json, "compare", report.compared, [&](const session::ComparedScene& compared) {
      json.field("scene", compared.scene);
      json.field("take", compared.take);
    });
    write_layout(json, layout);
    write_measure_fields(json, report);
    json.key("trails");
    json.list(kTrails, [&] {
      for (std::size_t i = 0; i < report.trails.size(); ++i)
        json.object({}, [&] { write_trail(json, report, report.trails[i], layout.trails[i]); });
    });
    json.key("statics");
    json.list(kStatics, [&] {
      for (const session::StaticBox& box : report.statics) json.object({}, [&] { session::write_static(json, box); });
    });
  });
}

void write_blocks(TextSink& out, const session::TrailReport& report) {
  const DataLayout layout = lay_out(report);
  out << "<script type=\"application/json\" id=\"trails-header\">";
  write_header(out, report, layout);
  out << "</script>\n<script type=\"application/octet-stream\" id=\"trails-data\">";
  Base64 data(out);
  write_data(data, report, layout);
  data.finish();
  out << "</script>";
}

}  // namespace

void write_page(TextSink& out, std::string_view policy, const std::function<void()>& blocks) {
  for (const std::string_view piece : page()) {
    if (piece == kPagePlace)
      blocks();
    else
      out << (piece == page_policy() ? policy : piece);
  }
}

void write_html(TextSink& out, const session::TrailReport& report) {
  write_page(out, page_policy(), [&] { write_blocks(out, report); });
}

}  // namespace vantorelix::cli
