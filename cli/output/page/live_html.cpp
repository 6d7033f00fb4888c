#include "cli/output/page/live_html.h"

#include "base/json_writer.h"
#include "cli/output/base64.h"
#include "cli/output/page/html.h"
#include "cli/output/page/page.h"
#include "cli/terminal/failure.h"

namespace vantorelix::cli {

namespace {

void write_files(JsonWriter& json, const std::vector<LiveFile>& files) {
  json.key("files");
  json.list({}, [&] {
    for (const LiveFile& file : files)
      json.object({}, [&] {
        json.field("name", file.name);
        json.field("bytes", file.bytes.size());
      });
  });
}

void write_request(JsonWriter& json, const LiveScene& scene) {
  json.key("reading");
  json.object({}, [&] {
    json.field("take", scene.take);
    json.field("axis", scene.axis);
    json.field("unit", scene.unit);
    json.field("fps", scene.fps);
  });
  json.key("trails");
  json.object({}, [&] {
    json.field("patterns", scene.selection.patterns);
    json.field("exclude", scene.selection.exclude);
    json.field("ignoreCase", scene.selection.ignore_case);
    json.field("all", scene.selection.all);
    json.field("samplesPerFrame", scene.samples_per_frame);
    json.field("colorMode", scene.color_mode);
    json.field("first", scene.first);
    json.field("last", scene.last);
  });
}

void write_header(TextSink& out, const LiveScene& scene) {
  JsonWriter json(out, JsonWriter::Texts::script);
  json.object({}, [&] {
    json.field("format", 1);
    json.field("name", scene.name);
    write_files(json, scene.files);
    write_request(json, scene);
    json.field("frame", scene.frame);
    json.field("lineWidth", scene.line_width);
    json.field("pointSize", scene.point_size);
    json.field("showLine", scene.show_line);
    json.field("showDots", scene.show_dots);
    json.field("ghost", scene.ghost);
  });
}

void write_scene(TextSink& out, const LiveScene& scene) {
  out << "<script type=\"application/json\" id=\"scene-header\">";
  write_header(out, scene);
  out << "</script>\n<script type=\"application/octet-stream\" id=\"scene-data\">";
  Base64 data(out);
  for (const LiveFile& file : scene.files)
    for (const char byte : file.bytes) data.byte(static_cast<std::uint8_t>(byte));
  data.finish();
  out << "</script>";
}

}  // namespace

void check_engine() {
  if (engine_blocks().empty())
    throw Failure(
        "this program was built without the engine for live pages; build it with './dev build', which says why where "
        "it leaves the engine out, or take a released program");
}

void write_live_html(TextSink& out, const LiveScene* scene) {
  check_engine();
  write_page(out, live_policy(), [&] {
    for (const std::string_view piece : engine_blocks()) out << piece;
    if (scene != nullptr) write_scene(out, *scene);
  });
}

}  // namespace vantorelix::cli
