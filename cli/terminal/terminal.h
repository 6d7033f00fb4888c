// What the program says while it works: notes, warnings, errors, progress. All of it goes to standard error.
#pragma once

#include <chrono>
#include <string>

namespace vantorelix::cli {

enum class ColorUse { automatic, always, never };

// Lines for people, or JSON lines for programs; docs/cli.md describes these.
enum class LogFormat { text, json };

// What a remark is about, as far as it is known. It is told in JSON lines only: texts name it themselves.
struct Place {
  std::string file;
  std::size_t line = 0;  // 0: none
};

// Whether texts for a stream are coloured: always and never are obeyed; automatic asks for a terminal, and for
// NO_COLOR unset or empty.
bool use_color(ColorUse wish, bool is_terminal);

class Terminal {
 public:
  Terminal(ColorUse color, bool quiet, LogFormat format = LogFormat::text);

  // The scene that the following lines belong to.
  void set_scene(const std::string& scene) { scene_ = scene; }

  // A plain remark; not shown when quiet.
  void note(const std::string& text);
  // "vantorelix: warning: text"; not shown when quiet, but always counted.
  void warn(const std::string& text, const Place& place = {});
  // "vantorelix: text"; always shown.
  void error(const std::string& text, const Place& place = {});
  std::size_t warnings() const { return warnings_; }
  bool quiet() const { return quiet_; }
  // Says in JSON lines that all is done with the scene. People see that from what was written.
  void done(std::size_t trails, double seconds);

  // Replaces the progress line, at most ten times a second and not within the first second of the program; only
  // on a terminal, and not when quiet. The next note, warning or error wipes it.
  void progress(const std::string& text);
  void end_progress();

  // The text in bold, faint or yellow where standard output is coloured.
  std::string bold(const std::string& text) const { return styled(text, "1"); }
  std::string faint(const std::string& text) const { return styled(text, "2"); }
  std::string yellow(const std::string& text) const { return styled(text, "33"); }

 private:
  std::string styled(const std::string& text, const char* code) const;
  void line(const std::string& prefix, const char* code, const std::string& text);
  // A JSON line, to which `body` adds fields.
  template <class Body>
  void json_line(const char* level, const Body& body);
  void json_remark(const char* level, const std::string& text, const Place& place);

  bool quiet_;
  bool json_;
  bool color_stdout_;
  bool color_stderr_;
  bool progress_allowed_;
  bool progress_shown_ = false;
  std::size_t warnings_ = 0;
  std::string scene_;
  std::chrono::steady_clock::time_point next_progress_;
};

}  // namespace vantorelix::cli
