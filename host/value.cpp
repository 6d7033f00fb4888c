#include "host/value.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <system_error>

#include "host/error.h"

namespace vantorelix::host {

namespace {

// --- characters ----------------------------------------------------------------------------------------------------

// Stands for a byte that is no part of valid UTF-8, as the scripting language escapes it on the way in.
constexpr char32_t kEscapedByte = 0xDC00;

struct Character {
  char32_t code;
  std::size_t size;  // bytes
};

// Reads one character at `at`, which is inside `text`.
Character decode(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char first = byte(at);
  if (first < 0x80) return {first, 1};
  const std::size_t size = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  const Character escaped{kEscapedByte + first, 1};
  if (first < 0xC2 || first > 0xF4 || at + size > text.size()) return escaped;
  char32_t code = first & (0xFFu >> (size + 1));
  for (std::size_t i = 1; i < size; ++i) {
    if ((byte(at + i) & 0xC0) != 0x80) return escaped;
    code = (code << 6) | (byte(at + i) & 0x3Fu);
  }
  constexpr std::array<char32_t, 5> kSmallest = {0, 0, 0x80, 0x800, 0x10000};
  const bool surrogate = code >= 0xD800 && code < 0xE000;
  return code < kSmallest[size] || code > 0x10FFFF || surrogate ? escaped : Character{code, size};
}

bool is_space(char32_t c) {
  return (c >= 0x09 && c <= 0x0D) || (c >= 0x1C && c <= 0x20) || c == 0x85 || c == 0xA0 || c == 0x1680 ||
         (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F || c == 0x205F || c == 0x3000;
}

// Leaves out what the common fonts cannot show: controls, format marks, separators, private use. Code points that no
// version of Unicode has assigned count as printable here.
bool is_printable(char32_t c) {
  if (c < 0x7F) return c >= 0x20;
  return c > 0xA0 && c != 0xAD && !is_space(c) && !(c >= 0x200B && c <= 0x200F) && !(c >= 0x202A && c <= 0x202E) &&
         !(c >= 0x2060 && c <= 0x206F) && !(c >= 0xD800 && c <= 0xF8FF) && c != 0xFEFF &&
         !(c >= 0xFFF0 && c <= 0xFFFB) && (c & 0xFFFE) != 0xFFFE && c < 0xE0000;
}

// The zeros of the scripts whose digits people type: a number may be written in any of them.
constexpr std::array<char32_t, 22> kZeros = {0x0660, 0x06F0, 0x07C0, 0x0966, 0x09E6, 0x0A66, 0x0AE6, 0x0B66,
                                             0x0BE6, 0x0C66, 0x0CE6, 0x0D66, 0x0E50, 0x0ED0, 0x0F20, 0x1040,
                                             0x1090, 0x17E0, 0x1810, 0x1946, 0x19D0, 0xFF10};

// The text of a number in plain ASCII, without the white space around it; "?" for anything that no number holds.
std::string plain_number(std::string_view text) {
  std::string plain;
  const std::string_view inner = stripped(text);
  for (std::size_t at = 0; at < inner.size();) {
    const Character c = decode(inner, at);
    at += c.size;
    if (c.code < 0x7F) {
      plain += static_cast<char>(c.code);
    } else {
      const auto zero =
          std::find_if(kZeros.begin(), kZeros.end(), [&](char32_t z) { return c.code >= z && c.code <= z + 9; });
      plain += zero == kZeros.end() ? '?' : static_cast<char>('0' + (c.code - *zero));
    }
  }
  return plain;
}

bool is_digit(char c) { return c >= '0' && c <= '9'; }

// Drops the underscores, each of which must stand between two digits; nothing where one does not.
std::optional<std::string> without_underscores(const std::string& text) {
  std::string bare;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool underscore = text[i] == '_';
    if (underscore && (i == 0 || i + 1 == text.size() || !is_digit(text[i - 1]) || !is_digit(text[i + 1])))
      return std::nullopt;
    if (!underscore) bare += text[i];
  }
  return bare;
}

// --- quoting -------------------------------------------------------------------------------------------------------

void append_hex(std::string& out, char kind, char32_t code, int digits) {
  out += '\\';
  out += kind;
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) out += "0123456789abcdef"[(code >> shift) & 0xF];
}

void append_escaped(std::string& out, char32_t code) {
  if (code == '\n') {
    out += "\\n";
  } else if (code == '\r') {
    out += "\\r";
  } else if (code == '\t') {
    out += "\\t";
  } else if (code <= 0xFF) {
    append_hex(out, 'x', code, 2);
  } else if (code <= 0xFFFF) {
    append_hex(out, 'u', code, 4);
  } else {
    append_hex(out, 'U', code, 8);
  }
}

// `as_bytes`: every byte is a character of its own, and none beyond ASCII is printable.
std::string quoted(std::string_view text, bool as_bytes) {
  const bool has_single = text.find('\'') != std::string_view::npos;
  const char quote = has_single && text.find('"') == std::string_view::npos ? '"' : '\'';
  std::string out(as_bytes ? "b" : "");
  out += quote;
  for (std::size_t at = 0; at < text.size();) {
    const Character c = as_bytes ? Character{static_cast<unsigned char>(text[at]), 1} : decode(text, at);
    if (c.code == static_cast<unsigned char>(quote) || c.code == '\\') {
      out += '\\';
      out += static_cast<char>(c.code);
    } else if (is_printable(c.code) && !(as_bytes && c.code > 0x7F)) {
      out += text.substr(at, c.size);
    } else {
      append_escaped(out, c.code);
    }
    at += c.size;
  }
  return out + quote;
}

// Texts in errors are cut after this many characters.
std::string cut(const std::string& text) {
  std::size_t at = 0;
  for (int count = 0; at < text.size() && count < 200; ++count) at += decode(text, at).size;
  return text.substr(0, at);
}

// --- conversions ---------------------------------------------------------------------------------------------------

[[noreturn]] void no_int(const std::string& type) {
  throw Error("int() argument must be a string, a bytes-like object or a number, not '" + type + "'", ErrorKind::type);
}

[[noreturn]] void no_float(const std::string& type) {
  throw Error("float() argument must be a string or a number, not '" + type + "'", ErrorKind::type);
}

[[noreturn]] void no_items(const std::string& text) { throw Error(text, ErrorKind::type); }

std::int64_t int_of(double d) {
  if (std::isnan(d)) throw Error("cannot convert float NaN to integer", ErrorKind::value);
  if (std::isinf(d)) throw Error("cannot convert float infinity to integer", ErrorKind::overflow);
  constexpr double kLimit = 9223372036854775808.0;  // 2 to the 63rd
  if (d >= kLimit || d < -kLimit) throw Error("int too large to convert", ErrorKind::overflow);
  return static_cast<std::int64_t>(d);
}

// `shown` is how the error shows the text.
std::int64_t int_of(std::string_view text, const std::string& shown) {
  const auto number = without_underscores(plain_number(text));
  if (number && !number->empty()) {
    const bool has_sign = (*number)[0] == '+' || (*number)[0] == '-';
    const char* first = number->data() + (has_sign && (*number)[0] == '+' ? 1 : 0);
    const char* last = number->data() + number->size();
    const bool digits_only = number->size() > (has_sign ? 1u : 0u) &&
                             std::all_of(number->begin() + (has_sign ? 1 : 0), number->end(), is_digit);
    if (digits_only) {
      std::int64_t result = 0;
      if (std::from_chars(first, last, result).ec == std::errc()) return result;
      throw Error("int too large to convert", ErrorKind::overflow);
    }
  }
  throw Error("invalid literal for int() with base 10: " + cut(shown), ErrorKind::value);
}

// What a decimal too far from 1 for a double stands for: infinity or zero. The text is a valid decimal, unsigned.
double out_of_range(const std::string& decimal) {
  const std::size_t e = std::min(decimal.find_first_of("eE"), decimal.size());
  // A huge exponent decides alone; a moderate one is beaten by thousands of digits.
  const bool negative_exponent = e < decimal.size() && decimal[e + 1] == '-';
  const std::size_t point = std::min(decimal.find('.'), e);
  const std::size_t first = decimal.find_first_not_of("0.");
  const bool huge = e < decimal.size() ? !negative_exponent : first < point;
  return huge ? std::numeric_limits<double>::infinity() : 0.0;
}

// Reads [digits][.digits][e[sign]digits], "inf", "infinity" or "nan", with a sign or without.
std::optional<double> parse_float(std::string text) {
  if (text.empty()) return std::nullopt;
  const bool negative = text[0] == '-';
  if (negative || text[0] == '+') text.erase(0, 1);
  if (text.empty() || text[0] == '+' || text[0] == '-') return std::nullopt;
  std::string lower = text;
  for (char& c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  double result = 0.0;
  if (lower == "inf" || lower == "infinity") {
    result = std::numeric_limits<double>::infinity();
  } else if (lower == "nan") {
    result = std::numeric_limits<double>::quiet_NaN();
  } else {
    if (!is_digit(text[0]) && text[0] != '.') return std::nullopt;
    const char* last = text.data() + text.size();
    const auto [end, problem] = std::from_chars(text.data(), last, result);
    if (problem == std::errc::invalid_argument || end != last) return std::nullopt;
    if (problem == std::errc::result_out_of_range) result = out_of_range(text);
  }
  return negative ? -result : result;
}

double float_of(std::string_view text, const std::string& shown) {
  const auto number = without_underscores(plain_number(text));
  const auto result = number ? parse_float(*number) : std::nullopt;
  // A blank text is not shown at all.
  const bool blank = number && number->empty();
  if (!result) throw Error("could not convert string to float: " + (blank ? "" : shown), ErrorKind::value);
  return *result;
}

class FunctionObject : public Object {
 public:
  FunctionObject(std::string name, std::function<void(const Value&)> body)
      : name_(std::move(name)), body_(std::move(body)) {}
  std::string text() const override { return name_; }
  bool callable() const override { return true; }
  void call(const Value& argument) override { body_(argument); }

 private:
  std::string name_;
  std::function<void(const Value&)> body_;
};

// `outer` are the lists that this one stands inside: a list inside itself is shown as "[...]".
std::string list_repr(const List& list, std::vector<const void*>& outer) {
  if (std::find(outer.begin(), outer.end(), list.get()) != outer.end()) return "[...]";
  outer.push_back(list.get());
  std::string out = "[";
  for (const Value& item : *list) {
    if (out.size() > 1) out += ", ";
    out += item.as_list() ? list_repr(*item.as_list(), outer) : item.repr();
  }
  outer.pop_back();
  return out + "]";
}

}  // namespace

std::int64_t Object::to_int() const { no_int(type_name()); }
double Object::to_float() const { no_float(type_name()); }
Value Object::item(std::int64_t) const { no_items("'" + type_name() + "' object is not subscriptable"); }
std::vector<Value> Object::items() const { no_items("'" + type_name() + "' object is not iterable"); }
void Object::call(const Value&) { throw Error("'" + type_name() + "' object is not callable", ErrorKind::type); }

Value Value::list(std::vector<Value> items) { return Value(std::make_shared<std::vector<Value>>(std::move(items))); }

Value Value::function(std::string name, std::function<void(const Value&)> body) {
  return Value(std::shared_ptr<Object>(std::make_shared<FunctionObject>(std::move(name), std::move(body))));
}

// An object's conversions run the host's code, which may put something else where this Value stands: they work on a
// share of it.
std::string Value::type_name() const {
  if (const auto* object = as_object()) return std::shared_ptr(*object)->type_name();
  constexpr std::array<const char*, 7> kNames = {"NoneType", "bool", "int", "float", "str", "bytes", "list"};
  return kNames[data_.index()];
}

bool Value::truthy() const {
  if (as_bool()) return *as_bool();
  if (as_int()) return *as_int() != 0;
  if (as_float()) return *as_float() != 0.0;
  if (as_text()) return !as_text()->empty();
  if (as_bytes()) return !as_bytes()->data.empty();
  if (as_list()) return !(*as_list())->empty();
  return as_object() && std::shared_ptr(*as_object())->truthy();
}

bool Value::callable() const { return as_object() && (*as_object())->callable(); }

Value Value::item(std::int64_t i) const {
  if (as_object()) return std::shared_ptr(*as_object())->item(i);
  if (!as_list()) no_items("'" + type_name() + "' object is not subscriptable");
  const std::vector<Value>& items = **as_list();
  if (i < 0 || static_cast<std::size_t>(i) >= items.size()) throw Error("list index out of range", ErrorKind::index);
  return items[static_cast<std::size_t>(i)];
}

std::vector<Value> Value::items() const {
  if (as_object()) return std::shared_ptr(*as_object())->items();
  if (!as_list()) no_items("'" + type_name() + "' object is not iterable");
  return **as_list();
}

std::int64_t Value::to_int() const {
  if (as_bool()) return *as_bool() ? 1 : 0;
  if (as_int()) return *as_int();
  if (as_float()) return int_of(*as_float());
  if (as_text()) return int_of(*as_text(), repr());
  if (as_bytes()) return int_of(as_bytes()->data, repr());
  if (as_object()) return std::shared_ptr(*as_object())->to_int();
  no_int(type_name());
}

double Value::to_float() const {
  if (as_bool()) return *as_bool() ? 1.0 : 0.0;
  if (as_int()) return static_cast<double>(*as_int());
  if (as_float()) return *as_float();
  if (as_text()) return float_of(*as_text(), repr());
  if (as_bytes()) return float_of(as_bytes()->data, repr());
  if (as_object()) return std::shared_ptr(*as_object())->to_float();
  no_float(type_name());
}

std::string Value::text() const { return as_text() ? *as_text() : repr(); }

std::string Value::repr() const {
  if (as_bool()) return *as_bool() ? "True" : "False";
  if (as_int()) return std::to_string(*as_int());
  if (as_float()) return float_repr(*as_float());
  if (as_text()) return quoted(*as_text(), false);
  if (as_bytes()) return quoted(as_bytes()->data, true);
  if (as_object()) return std::shared_ptr(*as_object())->text();
  if (!as_list()) return "None";
  std::vector<const void*> outer;
  return list_repr(*as_list(), outer);
}

bool operator==(const Value& a, const Value& b) {
  if (a.as_list() && b.as_list()) return *a.as_list() == *b.as_list() || **a.as_list() == **b.as_list();
  return a.data_ == b.data_;
}

std::string_view stripped(std::string_view text) {
  std::size_t first = text.size();
  std::size_t last = first;
  for (std::size_t at = 0; at < text.size();) {
    const Character c = decode(text, at);
    if (!is_space(c.code)) {
      first = std::min(first, at);
      last = at + c.size;
    }
    at += c.size;
  }
  return text.substr(first, last - first);
}

std::string float_repr(double d) {
  if (std::isnan(d)) return "nan";
  if (std::isinf(d)) return d < 0 ? "-inf" : "inf";
  std::array<char, 32> buffer;
  const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), d, std::chars_format::scientific);
  const std::string scientific(buffer.data(), written.ptr);  // [-]d[.ddd]e(+|-)dd
  const std::size_t e = scientific.find('e');
  const int exponent = std::stoi(scientific.substr(e + 1));
  if (exponent < -4 || exponent >= 16) return scientific;

  const std::string sign = scientific[0] == '-' ? "-" : "";
  std::string digits = scientific.substr(sign.size(), e - sign.size());
  if (digits.size() > 1) digits.erase(1, 1);  // the point
  if (exponent < 0) return sign + "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0') + digits;
  const std::size_t whole = static_cast<std::size_t>(exponent) + 1;
  if (digits.size() <= whole) return sign + digits + std::string(whole - digits.size(), '0') + ".0";
  return sign + digits.substr(0, whole) + "." + digits.substr(whole);
}

}  // namespace vantorelix::host
