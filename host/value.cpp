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

// --- texts ---------------------------------------------------------------------------------------------------------

bool is_space(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// What a script would type to get the text; `prefix` is what stands before the quotes.
std::string quoted(std::string_view text, const char* prefix = "") {
  static constexpr char kHex[] = "0123456789abcdef";
  const bool has_single = text.find('\'') != std::string_view::npos;
  const char quote = has_single && text.find('"') == std::string_view::npos ? '"' : '\'';
  const auto escaped = [&](char c) -> std::string {
    if (c == quote || c == '\\') return {'\\', c};
    if (c == '\n') return "\\n";
    if (c == '\r') return "\\r";
    if (c == '\t') return "\\t";
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte != 0x7F) return {c};
    return {'\\', 'x', kHex[byte >> 4], kHex[byte & 15]};
  };
  std::string out = std::string(prefix) + quote;
  for (const char c : text) out += escaped(c);
  return out + quote;
}

// Texts in errors are cut after this many characters.
std::string cut(const std::string& text) {
  std::size_t count = 0;
  const auto end = std::find_if(text.begin(), text.end(), [&](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80 && ++count > 200;  // a byte that begins a character
  });
  return {text.begin(), end};
}

// --- conversions ---------------------------------------------------------------------------------------------------

[[noreturn]] void no_int(const std::string& type) {
  throw Error("int() argument must be a string or a number, not '" + type + "'", ErrorKind::type);
}

[[noreturn]] void no_float(const std::string& type) {
  throw Error("float() argument must be a string or a number, not '" + type + "'", ErrorKind::type);
}

[[noreturn]] void no_keyword(const std::string& type) {
  throw Error("'" + type + "' object has no attribute 'strip'", ErrorKind::attribute);
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
  std::string_view number = stripped(text);
  if (number.starts_with('+') && !number.starts_with("+-")) number.remove_prefix(1);
  std::int64_t result = 0;
  const char* const last = number.data() + number.size();
  const auto [end, problem] = std::from_chars(number.data(), last, result);
  if (problem == std::errc::invalid_argument || end != last)
    throw Error("invalid literal for int() with base 10: " + cut(shown), ErrorKind::value);
  if (problem == std::errc::result_out_of_range) throw Error("int too large to convert", ErrorKind::overflow);
  return result;
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
  std::string name = text;
  std::transform(name.begin(), name.end(), name.begin(), lower);
  double result = 0.0;
  if (name == "inf" || name == "infinity") {
    result = std::numeric_limits<double>::infinity();
  } else if (name == "nan") {
    result = std::numeric_limits<double>::quiet_NaN();
  } else {
    if ((text[0] < '0' || text[0] > '9') && text[0] != '.') return std::nullopt;
    const char* last = text.data() + text.size();
    const auto [end, problem] = std::from_chars(text.data(), last, result);
    if (problem == std::errc::invalid_argument || end != last) return std::nullopt;
    if (problem == std::errc::result_out_of_range) result = out_of_range(text);
  }
  return negative ? -result : result;
}

double float_of(std::string_view text, const std::string& shown) {
  const std::string_view number = stripped(text);
  const auto result = parse_float(std::string(number));
  // A blank text is not shown at all.
  if (!result) throw Error("could not convert string to float: " + (number.empty() ? "" : shown), ErrorKind::value);
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
std::string Object::keyword() const { no_keyword(type_name()); }
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
  if (as_object()) return std::shared_ptr(*as_object())->truthy();
  if (as_bool()) return *as_bool();
  if (as_int()) return *as_int() != 0;
  if (as_float()) return *as_float() != 0.0;
  if (as_text()) return !as_text()->empty();
  if (as_bytes()) return !as_bytes()->data.empty();
  return as_list() && !(*as_list())->empty();
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
  if (as_object()) return std::shared_ptr(*as_object())->to_int();
  if (as_bool()) return *as_bool() ? 1 : 0;
  if (as_int()) return *as_int();
  if (as_float()) return int_of(*as_float());
  if (as_text()) return int_of(*as_text(), repr());
  no_int(type_name());
}

double Value::to_float() const {
  if (as_object()) return std::shared_ptr(*as_object())->to_float();
  if (as_bool()) return *as_bool() ? 1.0 : 0.0;
  if (as_int()) return static_cast<double>(*as_int());
  if (as_float()) return *as_float();
  if (as_text()) return float_of(*as_text(), repr());
  no_float(type_name());
}

std::string Value::keyword() const {
  if (as_object()) return std::shared_ptr(*as_object())->keyword();
  if (as_bytes()) return {};
  if (!as_text()) no_keyword(type_name());
  std::string word(stripped(*as_text()));
  std::transform(word.begin(), word.end(), word.begin(), lower);
  return word;
}

std::string Value::text() const {
  if (as_object()) return std::shared_ptr(*as_object())->text();
  return as_text() ? *as_text() : repr();
}

std::string Value::repr() const {
  if (as_object()) return std::shared_ptr(*as_object())->repr();
  if (as_bool()) return *as_bool() ? "True" : "False";
  if (as_int()) return std::to_string(*as_int());
  if (as_float()) return float_repr(*as_float());
  if (as_text()) return quoted(*as_text());
  if (as_bytes()) return quoted(as_bytes()->data, "b");
  if (!as_list()) return "None";
  std::vector<const void*> outer;
  return list_repr(*as_list(), outer);
}

bool operator==(const Value& a, const Value& b) {
  if (a.as_text() && b.as_text()) return *a.as_text() == *b.as_text();
  if (a.as_list() && b.as_list()) return *a.as_list() == *b.as_list() || **a.as_list() == **b.as_list();
  return a.data_ == b.data_;
}

std::string_view stripped(std::string_view text) {
  while (!text.empty() && is_space(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_space(text.back())) text.remove_suffix(1);
  return text;
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
  const std::size_t digits_before = static_cast<std::size_t>(exponent) + 1;
  if (digits.size() <= digits_before) return sign + digits + std::string(digits_before - digits.size(), '0') + ".0";
  return sign + digits.substr(0, digits_before) + "." + digits.substr(digits_before);
}

}  // namespace vantorelix::host
