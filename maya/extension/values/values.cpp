#include "maya/extension/values/values.h"

#include <memory>
#include <string>
#include <variant>

#include "host/error.h"
#include "maya/extension/values/holder.h"

namespace vantorelix::maya {

namespace {

using host::Value;

// An object that the engine keeps and gives back.
class PythonObject : public host::Object {
 public:
  explicit PythonObject(PyObject* object) : object_(Ref::share(object)) {
    if (PyUnicode_CheckExact(object)) content_ = text_of(object);
    if (PyBytes_CheckExact(object))
      content_ = host::Bytes{{PyBytes_AS_STRING(object), static_cast<std::size_t>(PyBytes_GET_SIZE(object))}};
  }

  const Ref& object() const { return object_; }
  const std::string* as_text() const override { return std::get_if<std::string>(&content_); }
  const host::Bytes* as_bytes() const override { return std::get_if<host::Bytes>(&content_); }

  std::string type_name() const override { return Py_TYPE(object_.get())->tp_name; }
  Value item(std::int64_t i) const override {
    return value_of(checked(PyObject_GetItem(object_.get(), object_of(i).get())).get());
  }
  std::vector<Value> items() const override {
    const Ref list = checked(PySequence_List(object_.get()));
    std::vector<Value> items;
    for (Py_ssize_t i = 0; i < PyList_GET_SIZE(list.get()); ++i)
      items.push_back(value_of(PyList_GET_ITEM(list.get(), i)));
    return items;
  }
  bool truthy() const override { return truth(object_.get()); }
  std::int64_t to_int() const override {
    const Ref integer = maya::call(reinterpret_cast<PyObject*>(&PyLong_Type), std::array{object_.get()}.data(), 1);
    return integer_of(integer.get());
  }
  double to_float() const override { return number_of(checked(PyNumber_Float(object_.get())).get()); }
  std::string text() const override { return text_of(checked(PyObject_Str(object_.get())).get()); }
  std::string repr() const override { return text_of(checked(PyObject_Repr(object_.get())).get()); }
  std::string keyword() const override {
    const Ref word = method<"lower">(method<"strip">(object_.get()).get());
    return PyUnicode_Check(word.get()) ? text_of(word.get()) : std::string();
  }
  bool callable() const override { return PyCallable_Check(object_.get()) != 0; }
  void call(const Value& argument) override {
    const Ref converted = object_of(argument);
    maya::call(object_.get(), std::array{converted.get()}.data(), 1);
  }

 private:
  Ref object_;
  std::variant<std::monostate, std::string, host::Bytes> content_;  // of a str or bytes
};

Value wrapped(PyObject* object) { return Value(std::shared_ptr<host::Object>(std::make_shared<PythonObject>(object))); }

// Visits the items of a sequence; the visitor may run code that changes it.
template <class Visit>
void each(PyObject* sequence, Visit visit) {
  const bool plain = PyList_CheckExact(sequence) || PyTuple_CheckExact(sequence);
  const Ref items = plain ? Ref::share(sequence) : checked(PySequence_List(sequence));
  for (Py_ssize_t i = 0; i < PySequence_Fast_GET_SIZE(items.get()); ++i) {
    const Ref item = Ref::share(PySequence_Fast_GET_ITEM(items.get(), i));
    visit(item.get(), static_cast<std::size_t>(PySequence_Fast_GET_SIZE(items.get())));
  }
}

double item_number(PyObject* object, Py_ssize_t i) { return number_of(checked(PySequence_GetItem(object, i)).get()); }

}  // namespace

std::string text_of(PyObject* object) {
  if (!PyUnicode_Check(object)) {
    PyErr_Format(PyExc_TypeError, "a str is needed, not %.100s", Py_TYPE(object)->tp_name);
    throw_python_error();
  }
  Py_ssize_t size = 0;
  if (const char* const utf8 = PyUnicode_AsUTF8AndSize(object, &size)) return {utf8, static_cast<std::size_t>(size)};
  PyErr_Clear();
  const Ref bytes = checked(PyUnicode_AsEncodedString(object, "utf-8", "surrogatepass"));
  return {PyBytes_AS_STRING(bytes.get()), static_cast<std::size_t>(PyBytes_GET_SIZE(bytes.get()))};
}

double number_of(PyObject* object) {
  if (PyFloat_CheckExact(object)) return PyFloat_AS_DOUBLE(object);
  const double number = PyFloat_AsDouble(object);
  if (number == -1.0 && PyErr_Occurred()) throw_python_error();
  return number;
}

std::int64_t integer_of(PyObject* object) {
  const long long integer = PyLong_AsLongLong(object);
  if (integer == -1 && PyErr_Occurred()) throw_python_error();
  return integer;
}

std::vector<std::string> texts_of(PyObject* object) {
  std::vector<std::string> texts;
  if (!truth(object)) return texts;
  each(object, [&](PyObject* item, std::size_t) { texts.push_back(text_of(item)); });
  return texts;
}

std::vector<double> numbers_of(PyObject* sequence) {
  std::vector<double> numbers;
  each(sequence, [&](PyObject* item, std::size_t n) {
    numbers.reserve(n);
    numbers.push_back(number_of(item));
  });
  return numbers;
}

Vector vector_of(PyObject* object) {
  if (PyTuple_CheckExact(object) && PyTuple_GET_SIZE(object) >= 3)
    return {number_of(PyTuple_GET_ITEM(object, 0)), number_of(PyTuple_GET_ITEM(object, 1)),
            number_of(PyTuple_GET_ITEM(object, 2))};
  return {item_number(object, 0), item_number(object, 1), item_number(object, 2)};
}

std::vector<Vector> vectors_of(PyObject* sequence) {
  std::vector<Vector> vectors;
  each(sequence, [&](PyObject* item, std::size_t n) {
    vectors.reserve(n);
    vectors.push_back(vector_of(item));
  });
  return vectors;
}

Value value_of(PyObject* object) {
  if (object == Py_None) return {};
  if (PyBool_Check(object)) return object == Py_True;
  if (PyFloat_CheckExact(object)) return PyFloat_AS_DOUBLE(object);
  if (PyLong_CheckExact(object)) {
    int overflow = 0;
    const long long integer = PyLong_AsLongLongAndOverflow(object, &overflow);
    return overflow ? wrapped(object) : Value(std::int64_t{integer});
  }
  return wrapped(object);
}

Ref representation_of(PyObject* self, Ref (*plain)(PyObject*), const char* inside_itself) {
  const int inside = Py_ReprEnter(self);
  check(inside);
  if (inside > 0) return object_of(inside_itself);
  struct Leave {
    PyObject* self;
    ~Leave() { Py_ReprLeave(self); }
  } const leave{self};
  return checked(PyObject_Repr(plain(self).get()));
}

std::vector<std::pair<Ref, Ref>> pairs_of(PyObject* mapping) {
  const Ref items = checked(PyMapping_Items(mapping));
  std::vector<std::pair<Ref, Ref>> pairs;
  each(items.get(), [&](PyObject* item, std::size_t) {
    const Ref pair = checked(PySequence_Tuple(item));
    if (PyTuple_GET_SIZE(pair.get()) != 2)
      throw host::Error("items() of a mapping must give pairs of a key and a value", host::ErrorKind::value);
    pairs.emplace_back(Ref::share(PyTuple_GET_ITEM(pair.get(), 0)), Ref::share(PyTuple_GET_ITEM(pair.get(), 1)));
  });
  return pairs;
}

Ref object_of(bool value) { return Ref::share(value ? Py_True : Py_False); }
Ref object_of(int value) { return checked(PyLong_FromLong(value)); }
Ref object_of(std::int64_t value) { return checked(PyLong_FromLongLong(value)); }
Ref object_of(std::size_t value) { return checked(PyLong_FromSize_t(value)); }
Ref object_of(double value) { return checked(PyFloat_FromDouble(value)); }
Ref object_of(const char* value) { return object_of(std::string(value)); }
Ref object_of(const std::string& value) {
  return checked(PyUnicode_DecodeUTF8(value.data(), static_cast<Py_ssize_t>(value.size()), "surrogatepass"));
}
Ref object_of(const Ref& value) { return value; }
Ref none() { return Ref::share(Py_None); }

Ref object_of(Vector value) {
  Ref tuple = checked(PyTuple_New(3));
  PyTuple_SET_ITEM(tuple.get(), 0, object_of(value.x).release());
  PyTuple_SET_ITEM(tuple.get(), 1, object_of(value.y).release());
  PyTuple_SET_ITEM(tuple.get(), 2, object_of(value.z).release());
  return tuple;
}

Ref object_of(const Value& value) {
  if (value.is_none()) return none();
  if (const bool* const b = value.as_bool()) return object_of(*b);
  if (const std::int64_t* const i = value.as_int()) return object_of(*i);
  if (const double* const d = value.as_float()) return object_of(*d);
  if (const host::List* const list = value.as_list()) return new_holder(*list);
  if (const auto* const object = value.as_object())
    if (const auto* const python = dynamic_cast<const PythonObject*>(object->get())) return python->object();
  if (const std::string* const text = value.as_text()) return object_of(*text);
  throw host::Error("an object of another host cannot be given to Python", host::ErrorKind::type);
}

}  // namespace vantorelix::maya
