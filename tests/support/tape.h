// What a Recorder writes down: one line a call, in the host's scripting form, and which calls it breaks.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/vector.h"
#include "host/callback.h"
#include "host/error.h"
#include "host/value.h"
#include "tests/support/recorder.h"

namespace vantorelix::support {

// --- how an argument looks in a line -------------------------------------------------------------------------------

// A piece of text that stands in the line as it is.
struct Plain {
  std::string text;
};
struct Keyword {
  const char* name;
  std::string value;
};

inline std::string piece(const Plain& plain) { return plain.text; }
inline std::string piece(const Keyword& keyword) { return std::string(keyword.name) + "=" + keyword.value; }
inline std::string piece(const std::string& text) { return host::Value(text).repr(); }
inline std::string piece(const host::Value& value) { return value.repr(); }
inline std::string piece(const host::Callback& callback) { return callback.name; }
inline std::string piece(bool value) { return value ? "True" : "False"; }
inline std::string piece(double value) { return host::float_repr(value); }
inline std::string piece(std::int64_t value) { return std::to_string(value); }
inline std::string piece(std::size_t length) { return "<" + std::to_string(length) + ">"; }
inline std::string piece(const Vector& v) { return "(" + piece(v.x) + ", " + piece(v.y) + ", " + piece(v.z) + ")"; }
inline std::string piece(const std::vector<std::string>& names) {
  std::vector<host::Value> values(names.begin(), names.end());
  return host::Value::list(std::move(values)).repr();
}

template <class T>
Keyword kw(const char* name, const T& value) {
  return {name, piece(value)};
}
inline Keyword kw(const char* name, const char* text) { return {name, piece(std::string(text))}; }
template <class T>
Keyword pair(const char* name, const std::string& key, const T& value) {
  return {name, "(" + piece(key) + ", " + piece(value) + ")"};
}

inline bool begins_with(std::string_view line, std::string_view text) { return line.substr(0, text.size()) == text; }

// --- the tape ------------------------------------------------------------------------------------------------------

struct Rule {
  std::string text;   // beginning of the line; empty for a rule by number
  std::size_t n = 0;  // matches still to come, the last of them failing; 0: every one fails
  Failure failure = Failure::error;

  bool matches(std::string_view line) {
    if (!begins_with(line, text)) return false;
    if (n == 0) return true;
    if (n == kSpent) return false;
    n = n == 1 ? kSpent : n - 1;
    return n == kSpent;
  }
  static constexpr std::size_t kSpent = static_cast<std::size_t>(-1);
};

class Tape {
 public:
  // A call of `function` with positional and keyword arguments.
  template <class... Args>
  void call(std::string_view function, const Args&... args) {
    ++calls;
    if (!recording && rules.empty()) return;
    std::string arguments;
    ((arguments += (arguments.empty() ? "" : ", ") + piece(args)), ...);
    written(std::string(function) + "(" + arguments + ")");
  }
  // Anything that is not a call in the script's text.
  void statement(std::string line) {
    ++calls;
    written(std::move(line));
  }

  std::vector<std::string> lines;
  std::size_t calls = 0;
  std::vector<Rule> rules;
  bool recording = true;

 private:
  void written(std::string line) {
    // Every rule looks at every line, so that each keeps its own count.
    const Rule* failing = nullptr;
    for (Rule& rule : rules)
      if (rule.matches(line)) failing = &rule;
    const std::string text = failing ? "injected failure at call " + std::to_string(calls) + ": " + line : "";
    if (recording) lines.push_back(std::move(line));
    if (!failing) return;
    if (failing->failure == Failure::interrupt) throw host::Interrupt();
    throw host::Error(text);
  }
};

}  // namespace vantorelix::support
