// Values across the boundary: from Python's objects to the engine's types and back.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/value.h"
#include "host/vector.h"
#include "maya/extension/python.h"

namespace vantorelix::maya {

// --- to the engine -----------------------------------------------------------------------------------------------
// All throw what the interpreter raises: a TypeError for the wrong type, as a rule.

// UTF-8; lone surrogates pass, as they stand in the names of some files.
std::string text_of(PyObject* object);
double number_of(PyObject* object);
std::int64_t integer_of(PyObject* object);
// None, and what a script would call empty, are no texts at all.
std::vector<std::string> texts_of(PyObject* object);
std::vector<double> numbers_of(PyObject* sequence);
// Three numbers, or an object whose first three items are such.
host::Vector vector_of(PyObject* object);
std::vector<host::Vector> vectors_of(PyObject* sequence);
// Anything. What is not exactly None, bool, int, float, str, bytes, a list or a tuple comes back as the object it was;
// so does an int beyond 64 bits.
host::Value value_of(PyObject* object);

// --- to Python: new references -----------------------------------------------------------------------------------

Ref object_of(bool value);
Ref object_of(int value);
Ref object_of(std::int64_t value);
Ref object_of(std::size_t value);
Ref object_of(double value);
Ref object_of(const char* value);
Ref object_of(const std::string& value);
Ref object_of(const host::Vector& value);  // a tuple of three floats
Ref object_of(const host::Value& value);   // a list is a holder that shares it
Ref object_of(const Ref& value);
Ref none();

template <class T>
Ref object_of(const std::vector<T>& values) {
  Ref list = checked(PyList_New(static_cast<Py_ssize_t>(values.size())));
  for (std::size_t i = 0; i < values.size(); ++i)
    PyList_SET_ITEM(list.get(), static_cast<Py_ssize_t>(i), object_of(values[i]).release());
  return list;
}

template <class... T>
Ref tuple_of(const T&... values) {
  const std::array<Ref, sizeof...(T)> items = {object_of(values)...};
  Ref tuple = checked(PyTuple_New(sizeof...(T)));
  for (std::size_t i = 0; i < items.size(); ++i)
    PyTuple_SET_ITEM(tuple.get(), static_cast<Py_ssize_t>(i), Ref(items[i]).release());
  return tuple;
}

// The object inside a value that value_of made of one; null otherwise. Borrowed.
PyObject* object_inside(const host::Value& value);

}  // namespace vantorelix::maya
