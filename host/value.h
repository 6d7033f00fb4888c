// What crosses the boundary untyped: an argument handed on as it was passed, an option variable, a setting.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vantorelix::host {

class Value;

// A sequence shared by reference, as sequences are in the embedded scripting language: two Values that hold the
// same List see each other's changes.
using List = std::shared_ptr<std::vector<Value>>;

// Undecoded bytes, kept apart from text.
struct Bytes {
  std::string data;
  friend bool operator==(const Bytes&, const Bytes&) = default;
};

// An object that belongs to the host (a callback identifier, a message handler, anything a script passed). The
// engine only stores it and gives it back. The conversions are those of the host's language and throw Error with
// kind type or value where it has none. Each may run any code of the host's; the object lives at least until the
// conversion returns, even where that code lets go of the Value that held it.
class Object {
 public:
  virtual ~Object() = default;
  // In error texts.
  virtual std::string type_name() const { return "object"; }
  virtual bool truthy() const { return true; }
  // object[i]
  virtual Value item(std::int64_t i) const;
  // list(object): its items, each as it is; what they hold is not looked into.
  virtual std::vector<Value> items() const;
  virtual std::int64_t to_int() const;
  virtual double to_float() const;
  virtual std::string text() const = 0;
  virtual std::string repr() const { return text(); }
  // object.strip().lower(), where that is a text; else empty.
  virtual std::string keyword() const;
  // What it holds where it is a text or bytes of the host's language; else null. Valid as long as the object lives.
  virtual const std::string* as_text() const { return nullptr; }
  virtual const Bytes* as_bytes() const { return nullptr; }
  virtual bool callable() const { return false; }
  // Calls the object with one positional argument; its result is discarded. Throws what the callee throws.
  virtual void call(const Value& argument);
};

class Value {
 public:
  Value() = default;  // none
  Value(bool b) : data_(b) {}
  Value(int i) : data_(static_cast<std::int64_t>(i)) {}
  Value(std::int64_t i) : data_(i) {}
  Value(double d) : data_(d) {}
  Value(const char* s) : data_(std::string(s)) {}
  Value(std::string s) : data_(std::move(s)) {}
  Value(std::string_view s) : data_(std::string(s)) {}
  Value(Bytes b) : data_(std::move(b)) {}
  Value(List l) : data_(std::move(l)) {}
  Value(std::shared_ptr<Object> o) : data_(std::move(o)) {}

  Value(const Value&) = default;
  Value(Value&&) noexcept = default;
  // What was here is let go only when the new content is in its place: the last owner of an object runs the host's
  // code, which may look at this very Value.
  Value& operator=(Value other) noexcept {
    data_.swap(other.data_);
    return *this;
  }
  ~Value() = default;

  static Value list(std::vector<Value> items);
  // A callable host object around a C++ function; `name` is its text.
  static Value function(std::string name, std::function<void(const Value&)> body);

  bool is_none() const { return std::holds_alternative<std::monostate>(data_); }
  const bool* as_bool() const { return std::get_if<bool>(&data_); }
  const std::int64_t* as_int() const { return std::get_if<std::int64_t>(&data_); }
  const double* as_float() const { return std::get_if<double>(&data_); }
  // A text or bytes, an object's too.
  const std::string* as_text() const {
    return as_object() ? (*as_object())->as_text() : std::get_if<std::string>(&data_);
  }
  const Bytes* as_bytes() const { return as_object() ? (*as_object())->as_bytes() : std::get_if<Bytes>(&data_); }
  const List* as_list() const { return std::get_if<List>(&data_); }
  const std::shared_ptr<Object>* as_object() const { return std::get_if<std::shared_ptr<Object>>(&data_); }

  // The name of the type in error texts: "NoneType", "bool", "int", "float", "str", "bytes", "list", an object's own.
  std::string type_name() const;

  // Truth as the scripting language has it: none, false, 0, 0.0, "" and an empty list are false.
  bool truthy() const;
  bool callable() const;
  // The i-th item of a list or of an object that has items. Throws Error: kind index beyond the end of a list, kind
  // type for what has no items.
  Value item(std::int64_t i) const;
  // All items of a list or an object, as a list of their own. Throws Error of kind type for what has none; a text is
  // one text here.
  std::vector<Value> items() const;

  // An object converts as its host's language has it, whatever it throws; the rest describes plain values.
  // Integer part, towards zero; a decimal text is parsed ("5", " -3 "). Throws Error: kind value for a text that is not
  // an integer and for NaN, overflow for infinity and beyond 64 bits, type for none, bytes and a list.
  std::int64_t to_int() const;
  // Throws Error: kind value for a text that is not a number, type for none, bytes and a list.
  double to_float() const;
  // A text without the white space around it, in lower case; empty for bytes. Throws Error of kind attribute for what
  // is neither.
  std::string keyword() const;
  // The ordinary text form: "None", "True", "7", "7.0", "1e+16", the text itself, "[1, 'a']".
  std::string text() const;
  // As text(), but texts are quoted: what stands inside a list, and in a log of calls.
  std::string repr() const;

  // Same kind and same content; lists element by element, objects that hold no text by identity.
  friend bool operator==(const Value& a, const Value& b);

 private:
  std::variant<std::monostate, bool, std::int64_t, double, std::string, Bytes, List, std::shared_ptr<Object>> data_;
};

// The text without the ASCII white space around it.
std::string_view stripped(std::string_view text);

// Shortest text that reads back to the same double, in the scripting language's form ("0.1", "7.0", "1e+16", "nan").
std::string float_repr(double d);

}  // namespace vantorelix::host
