#include <array>
#include <string>

#include "cli/output/json_parts.h"
#include "cli/output/text.h"
#include "cli/output/writers.h"

namespace vantorelix::cli {

namespace {

void write_triples(OutputFile& out, const std::vector<Vector>& triples) {
  write_list(out, triples, [&](const Vector& v) { write_triple(out, v); });
}

void write_trail(OutputFile& out, const session::TrailView& trail) {
  const auto field = [&](const char* name) -> OutputFile& { return out << ",\n      \"" << name << "\": "; };
  out << "    {\n      \"viz\": " << json_text(trail.viz);
  field("source") << json_text(trail.source);
  field("name") << json_text(trail.name);
  field("node") << (trail.node ? std::to_string(*trail.node) : "null");
  field("samples_per_frame") << trail.samples_per_frame;
  field("color_mode") << trail.color_mode;
  write_number(field("start_frame"), trail.start_frame);
  write_number(field("frame_step"), trail.frame_step);
  write_triples(field("points"), *trail.points);
  write_triples(field("colors"), *trail.colors);
  write_numbers(field("key_times"), trail.key_times);
  write_triples(field("key_points"), *trail.key_points);
  write_triples(field("key_colors"), *trail.key_colors);
  write_list(field("warnings"), trail.warnings, [&](const std::string& text) { out << json_text(text); });
  out << "\n    }";
}

}  // namespace

void write_json(OutputFile& out, const session::TrailReport& report) {
  out << "{\n  \"scene\": " << json_text(report.scene) << ",\n  \"fps\": ";
  write_number(out, report.fps);
  out << ",\n  \"range\": ";
  write_numbers(out, std::array{report.first, report.last});
  out << ",\n  \"unit\": " << json_text(report.unit) << ",\n  \"up_axis\": \"" << report.up_axis
      << "\",\n  \"trails\": [";
  const char* separator = "\n";
  for (const session::TrailView& trail : report.trails) {
    out << separator;
    write_trail(out, trail);
    separator = ",\n";
  }
  out << "\n  ]\n}\n";
}

}  // namespace vantorelix::cli
