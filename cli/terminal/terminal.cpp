#include "cli/terminal/terminal.h"

#include <cstdio>
#include <cstdlib>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace vantorelix::cli {

namespace {

bool is_terminal(std::FILE* stream) {
#ifdef _WIN32
  return _isatty(_fileno(stream)) != 0;
#else
  return isatty(fileno(stream)) != 0;
#endif
}

}  // namespace

bool is_terminal_stdout() { return is_terminal(stdout); }
bool is_terminal_stderr() { return is_terminal(stderr); }

bool use_color(ColorUse wish, bool terminal) {
  if (wish != ColorUse::automatic) return wish == ColorUse::always;
  const char* no_color = std::getenv("NO_COLOR");
  return terminal && (no_color == nullptr || *no_color == '\0');
}

Terminal::Terminal(ColorUse color, bool quiet)
    : quiet_(quiet),
      color_stdout_(use_color(color, is_terminal_stdout())),
      color_stderr_(use_color(color, is_terminal_stderr())),
      progress_allowed_(!quiet && is_terminal_stderr()),
      next_progress_(std::chrono::steady_clock::now() + std::chrono::seconds(1)) {}

void Terminal::note(const std::string& text) {
  if (!quiet_) line("", "", text);
}

void Terminal::warn(const std::string& text) {
  ++warnings_;
  if (!quiet_) line("vantorelix: warning: ", "33", text);
}

void Terminal::error(const std::string& text) { line("vantorelix: ", "31", text); }

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

}  // namespace vantorelix::cli
