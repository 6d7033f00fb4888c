#include "cli/terminal/terminal.h"

#include <cstdio>
#include <cstdlib>

#include "base/json_writer.h"
#include "base/text_sink.h"
#include "cli/terminal/streams.h"

namespace vantorelix::cli {

bool use_color(ColorUse wish, bool terminal) {
  if (wish != ColorUse::automatic) return wish == ColorUse::always;
  const char* no_color = std::getenv("NO_COLOR");
  return terminal && (no_color == nullptr || *no_color == '\0');
}

Terminal::Terminal(ColorUse color, bool quiet, LogFormat format)
    : quiet_(quiet),
      json_(format == LogFormat::json),
      color_stdout_(use_color(color, is_terminal(stdout))),
      color_stderr_(use_color(color, is_terminal(stderr))),
      progress_allowed_(!quiet && !json_ && is_terminal(stderr)),
      next_progress_(std::chrono::steady_clock::now() + std::chrono::seconds(1)) {}

void Terminal::note(const std::string& text) {
  if (quiet_) return;
  json_ ? json_remark("note", text, {}) : line("", "", text);
}

void Terminal::warn(const std::string& text, const Place& place) {
  ++warnings_;
  if (quiet_) return;
  json_ ? json_remark("warning", text, place) : line("vantorelix: warning: ", "33", text);
}

void Terminal::error(const std::string& text, const Place& place) {
  json_ ? json_remark("error", text, place) : line("vantorelix: ", "31", text);
}

void Terminal::done(std::size_t trails, double seconds) {
  if (!json_ || quiet_) return;
  json_line("done", [&](JsonWriter& json) {
    json.field("trails", trails);
    json.field("seconds", seconds);
  });
}

void Terminal::progress(const std::string& text) {
  const auto now = std::chrono::steady_clock::now();
  if (!progress_allowed_ || now < next_progress_) return;
  next_progress_ = now + std::chrono::milliseconds(100);
  progress_shown_ = true;
  std::fprintf(stderr, "\r\x1b[K%s", text.c_str());
  std::fflush(stderr);
}

void Terminal::end_progress() {
  if (progress_shown_) std::fputs("\r\x1b[K", stderr);
  progress_shown_ = false;
}

std::string Terminal::styled(const std::string& text, const char* code) const {
  return color_stdout_ ? "\x1b[" + std::string(code) + "m" + text + "\x1b[0m" : text;
}

void Terminal::line(const std::string& prefix, const char* code, const std::string& text) {
  end_progress();
  const bool colored = color_stderr_ && *code != '\0';
  const std::string head = colored ? "\x1b[" + std::string(code) + "m" + prefix + "\x1b[0m" : prefix;
  std::fprintf(stderr, "%s%s\n", head.c_str(), text.c_str());
}

template <class Body>
void Terminal::json_line(const char* level, const Body& body) {
  StringSink text;
  JsonWriter json(text);
  json.object({}, [&] {
    json.field("level", level);
    if (!scene_.empty()) json.field("scene", scene_);
    body(json);
  });
  text << '\n';
  const std::string line = text.text();
  std::fwrite(line.data(), 1, line.size(), stderr);  // in one piece, whoever else writes there
}

void Terminal::json_remark(const char* level, const std::string& text, const Place& place) {
  json_line(level, [&](JsonWriter& json) {
    if (!place.file.empty()) json.field("file", place.file);
    if (place.line != 0) json.field("line", place.line);
    json.field("message", text);
  });
}

}  // namespace vantorelix::cli
