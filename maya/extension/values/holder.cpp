#include "maya/extension/values/holder.h"

#include "host/error.h"
#include "maya/extension/python/types.h"
#include "maya/extension/values/values.h"

namespace vantorelix::maya {

namespace {

host::List& list_in(PyObject* self) { return content_of<host::List>(self); }

Py_ssize_t length(PyObject* self) { return static_cast<Py_ssize_t>(list_in(self)->size()); }

// The place of an item, valid only until Python code runs.
host::Value& place(PyObject* self, Py_ssize_t i) {
  auto& items = *list_in(self);
  if (i < 0 || static_cast<std::size_t>(i) >= items.size())
    throw host::Error("list index out of range", host::ErrorKind::index);
  return items[static_cast<std::size_t>(i)];
}

PyObject* item(PyObject* self, Py_ssize_t i) {
  return answer([&] { return object_of(host::Value(place(self, i))); });
}

int set_item(PyObject* self, Py_ssize_t i, PyObject* value) {
  return answer_or(-1, [&] {
    host::Value given = value ? value_of(value) : host::Value();
    std::swap(place(self, i), given);  // and what was there is let go last
    if (!value) list_in(self)->erase(list_in(self)->begin() + i);
    return 0;
  });
}

PyObject* insert(PyObject* self, PyObject* arguments) {
  Py_ssize_t i;
  PyObject* value;
  if (!PyArg_ParseTuple(arguments, "nO:insert", &i, &value)) return nullptr;
  return answer([&] {
    host::Value given = value_of(value);
    if (i < 0) i += length(self);
    list_in(self)->insert(list_in(self)->begin() + std::clamp<Py_ssize_t>(i, 0, length(self)), std::move(given));
    return none();
  });
}

// Appends the items that `values` holds now. It may grow meanwhile: it may be a view of this very list.
PyObject* extend(PyObject* self, PyObject* values) {
  return answer([&] {
    const Ref snapshot = checked(PySequence_List(values));
    for (Py_ssize_t i = 0; i < PyList_GET_SIZE(snapshot.get()); ++i) {
      host::Value given = value_of(PyList_GET_ITEM(snapshot.get(), i));
      list_in(self)->push_back(std::move(given));
    }
    return none();
  });
}

Ref as_list(PyObject* self) { return checked(PySequence_List(self)); }

bool is_holder(PyObject* object);

PyObject* compare(PyObject* self, PyObject* other, int operation) {
  return answer([&] {
    const Ref mine = as_list(self);
    const Ref theirs = is_holder(other) ? as_list(other) : Ref::share(other);
    return checked(PyObject_RichCompare(mine.get(), theirs.get(), operation));
  });
}

PyObject* representation(PyObject* self) {
  return answer([&] { return representation_of(self, as_list, "[...]"); });
}

PyObject* holder_type() {
  static PyMethodDef methods[] = {{"extend", extend, METH_O, "extend(values)"},
                                  {"insert", insert, METH_VARARGS, "insert(index, value)"},
                                  {nullptr, nullptr, 0, nullptr}};
  static PyType_Slot slots[] = {{Py_sq_length, reinterpret_cast<void*>(length)},
                                {Py_sq_item, reinterpret_cast<void*>(item)},
                                {Py_sq_ass_item, reinterpret_cast<void*>(set_item)},
                                {Py_tp_richcompare, reinterpret_cast<void*>(compare)},
                                {Py_tp_hash, reinterpret_cast<void*>(PyObject_HashNotImplemented)},
                                {Py_tp_repr, reinterpret_cast<void*>(representation)},
                                {Py_tp_methods, methods},
                                {0, nullptr}};
  static PyObject* const made = new_type<host::List>("Vantorelix_engine.Reference", slots, "MutableSequence").release();
  return made;
}

bool is_holder(PyObject* object) { return Py_TYPE(object) == reinterpret_cast<PyTypeObject*>(holder_type()); }

}  // namespace

Ref new_holder(const host::List& list) { return new_instance(holder_type(), list); }

}  // namespace vantorelix::maya
