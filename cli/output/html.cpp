#include "cli/output/html.h"

#include <array>
#include <string>

#include "cli/output/base64.h"
#include "cli/output/json_parts.h"
#include "cli/output/page.h"
#include "cli/output/text.h"
#include "cli/output/trail_data.h"

namespace vantorelix::cli {

namespace {

const char* boolean(bool b) { return b ? "true" : "false"; }

std::int64_t whole(std::uint64_t n) { return static_cast<std::int64_t>(n); }

// JSON that a script element holds, whatever the text.
std::string script_text(const std::string& text) {
  static constexpr std::array<std::array<std::string_view, 2>, 5> kUnsafe = {
      {{"<", "\\u003c"}, {">", "\\u003e"}, {"&", "\\u0026"}, {"\xE2\x80\xA8", "\\u2028"}, {"\xE2\x80\xA9", "\\u2029"}}};
  std::string out = json_text(text);
  for (const auto& [unsafe, escape] : kUnsafe)
    for (std::size_t at = out.find(unsafe); at != std::string::npos; at = out.find(unsafe, at + escape.size()))
      out.replace(at, unsafe.size(), escape);
  return out;
}

class Header {
 public:
  Header(OutputFile& out, const session::TrailReport& report, const DataLayout& layout)
      : out_(out), report_(report), layout_(layout) {}

  void write() {
    out_ << "{\"format\": 1";
    field("scene") << script_text(report_.scene);
    number("fps", report_.fps);
    write_numbers(field("range"), std::array{report_.first, report_.last});
    number("current", report_.current);
    field("unit") << script_text(report_.unit);
    field("up_axis") << script_text(std::string(1, report_.up_axis));
    write_layout();
    field("trails") << '[';
    for (std::size_t i = 0; i < report_.trails.size(); ++i) {
      out_ << (i == 0 ? "\n" : ",\n");
      write_trail(report_.trails[i], layout_.trails[i]);
    }
    out_ << ']';
    field("statics");
    write_list(out_, report_.statics, [this](const session::StaticBox& box) { write_static(box); });
    out_ << '}';
  }

 private:
  OutputFile& field(const char* name) { return out_ << ", \"" << name << "\": "; }
  void number(const char* name, double value) { write_number(field(name), value); }

  void write_layout() {
    field("key_time_bytes") << std::int64_t{layout_.double_times ? 8 : 4};
    field("sections") << "{\"positions\": " << whole(layout_.positions);
    field("key_positions") << whole(layout_.key_positions);
    field("key_times") << whole(layout_.key_times);
    field("colors") << whole(layout_.colors) << '}';
    field("bytes") << whole(layout_.bytes);
  }

  void write_trail(const session::TrailView& trail, const TrailLayout& layout) {
    out_ << "{\"viz\": " << script_text(trail.viz);
    field("source") << script_text(trail.source);
    field("name") << script_text(trail.name);
    field("samples_per_frame") << trail.samples_per_frame;
    field("color_mode") << trail.color_mode;
    number("start_frame", trail.start_frame);
    number("frame_step", trail.frame_step);
    number("line_width", trail.line_width);
    number("point_size", trail.point_size);
    field("show_line") << boolean(trail.show_line);
    field("show_dots") << boolean(trail.show_dots);
    field("ghost") << boolean(trail.ghost);
    field("count") << whole(trail.points->size());
    write_triple(field("low"), layout.scale.low);
    write_triple(field("step"), layout.scale.step);
    field("keys") << whole(layout.keys);
    field("keys_on_samples") << boolean(layout.keys_on_samples);
    write_list(field("warnings"), trail.warnings, [this](const std::string& text) { out_ << script_text(text); });
    out_ << '}';
  }

  void write_static(const session::StaticBox& box) {
    out_ << "\n{\"name\": " << script_text(box.name);
    std::array<double, 16> matrix{};
    for (std::size_t row = 0; row < 4; ++row)
      for (std::size_t column = 0; column < 3; ++column) matrix[row * 4 + column] = box.world.m[row][column];
    matrix[15] = 1.0;
    write_numbers(field("matrix"), matrix);
    write_triple(field("low"), box.low);
    write_triple(field("high"), box.high);
    out_ << '}';
  }

  OutputFile& out_;
  const session::TrailReport& report_;
  const DataLayout& layout_;
};

void write_blocks(OutputFile& out, const session::TrailReport& report) {
  const DataLayout layout = lay_out(report);
  out << "<script type=\"application/json\" id=\"trails-header\">";
  Header(out, report, layout).write();
  out << "</script>\n<script type=\"application/octet-stream\" id=\"trails-data\">";
  Base64 data(out);
  write_data(data, report, layout);
  data.finish();
  out << "</script>";
}

}  // namespace

void write_html(OutputFile& out, const session::TrailReport& report) {
  for (const std::string_view piece : page()) {
    if (piece == kPagePlace)
      write_blocks(out, report);
    else
      out << piece;
  }
}

}  // namespace vantorelix::cli
