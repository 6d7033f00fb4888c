// Values across the boundary: from Python's objects to the engine's types and back.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "base/vector.h"
#include "host/value.h"
#include "maya/extension/python/python.h"

namespace vantorelix::maya {

// --- to the engine -----------------------------------------------------------------------------------------------
// All throw what the interpreter raises: a TypeError for the wrong type, as a rule.

// UTF-8; lone surrogates pass, as they stand in the names of some files.
std::string text_of(PyObject* object);
double number_of(PyObject* object);
std::int64_t integer_of(PyObject* object);
// None, and what a script would call empty, are not texts at all.
std::vector<std::string> texts_of(PyObject* object);
std::vector<double> numbers_of(PyObject* sequence);
// Three numbers, or an object whose first three items are such.
Vector vector_of(PyObject* object);
std::vector<Vector> vectors_of(PyObject* sequence);
// Anything. What is not exactly None, bool, float or an int of 64 bits stays the object that it is: it is converted by
// the interpreter, and comes back as it came.
host::Value value_of(PyObject* object);

// --- to Python: new references -----------------------------------------------------------------------------------

Ref object_of(bool value);
Ref object_of(int value);
Ref object_of(std::int64_t value);
Ref object_of(std::size_t value);
Ref object_of(double value);
Ref object_of(const char* value);
Ref object_of(const std::string& value);
Ref object_of(Vector value);              // a tuple of three floats
Ref object_of(const host::Value& value);  // a list is a holder that shares it
Ref object_of(const Ref& value);
Ref none();

template <class T>
Ref object_of(const std::vector<T>& values) {
  const std::size_t n = values.size();  // of a trail's samples more may come meanwhile
  Ref list = checked(PyList_New(static_cast<Py_ssize_t>(n)));
  for (std::size_t i = 0; i < n; ++i)
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

// What repr shows of `self`: the representation of plain(self), or `inside_itself` where it is asked for within itself.
Ref representation_of(PyObject* self, Ref (*plain)(PyObject*), const char* inside_itself);

// The items of a mapping, read once.
std::vector<std::pair<Ref, Ref>> pairs_of(PyObject* mapping);

}  // namespace vantorelix::maya
