// JSON, written from the front to the back.
#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/text_sink.h"
#include "base/vector.h"

namespace vantorelix {

// What stands before the first item of an object or list, between two, and after the last.
struct JsonLayout {
  std::string_view first = {}, next = ", ", last = {};

  // An item a line, `indent` blanks in (2 to 30), and the bracket that closes two blanks less.
  static constexpr JsonLayout lines(std::size_t indent) {
    constexpr std::string_view kNext = ",\n                              ";
    return {kNext.substr(1, 1 + indent), kNext.substr(0, 2 + indent), kNext.substr(1, indent - 1)};
  }
};

// Writes one value, with commas and brackets. Names and texts may hold any bytes: those that are not UTF-8 become
// U+FFFD. A number that is not finite becomes null.
class JsonWriter {
 public:
  // `script` is for a script element of a page, which no text ends: <, >, & and the two line ends that only Unicode has
  // are escaped.
  enum class Texts { plain, script };

  explicit JsonWriter(TextSink& out, Texts texts = Texts::plain) : out_(out), texts_(texts) {}

  // `body` writes the fields, or the items.
  template <class Body>
  void object(const JsonLayout& layout, const Body& body) {
    enclose('{', '}', layout, body);
  }
  template <class Body>
  void list(const JsonLayout& layout, const Body& body) {
    enclose('[', ']', layout, body);
  }

  // Comes before a value of an object.
  void key(std::string_view name);
  template <class T>
  void field(std::string_view name, const T& of) {
    key(name);
    value(of);
  }

  void value(std::string_view text);
  void value(const char* text) { value(std::string_view(text)); }
  void value(bool flag) { word(flag ? "true" : "false"); }
  void value(double number);
  void value(const Vector& v) { value(std::array{v.x, v.y, v.z}); }
  template <std::integral Integer>
  void value(Integer number) {
    begin();
    out_ << static_cast<std::int64_t>(number);
  }
  template <class T>
  void value(const std::optional<T>& item) {
    item ? value(*item) : word("null");
  }
  template <class T>
  void value(const std::vector<T>& items) {
    each(items);
  }
  template <class T, std::size_t N>
  void value(const std::array<T, N>& items) {
    each(items);
  }

 private:
  template <class Body>
  void enclose(char open, char close, const JsonLayout& layout, const Body& body) {
    begin();
    out_ << open;
    const JsonLayout outer = std::exchange(layout_, layout);
    empty_ = true;
    body();
    out_ << layout.last << close;
    layout_ = outer;
    empty_ = false;
  }
  template <class Items>
  void each(const Items& items) {
    list({}, [&] {
      for (const auto& item : items) value(item);
    });
  }

  void separate();
  // Sets a value apart from the one before, unless its key has done so.
  void begin();
  void word(const char* text);
  void quoted(std::string_view text);

  TextSink& out_;
  Texts texts_;
  JsonLayout layout_;  // of what is open
  bool empty_ = true;  // nothing in it yet
  bool after_key_ = false;
};

}  // namespace vantorelix
