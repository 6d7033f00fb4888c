#include "maya/extension/holder.h"

#include "host/error.h"
#include "maya/extension/types.h"
#include "maya/extension/values.h"

namespace vantorelix::maya {

namespace {

host::List& list_in(PyObject* self) { return content_of<host::List>(self); }

Py_ssize_t length(PyObject* self) { return static_cast<Py_ssize_t>(list_in(self)->size()); }

host::Value& at(PyObject* self, Py_ssize_t i) {
  auto& items = *list_in(self);
  if (i < 0 || static_cast<std::size_t>(i) >= items.size())
    throw host::Error("list index out of range", host::ErrorKind::index);
  return items[static_cast<std::size_t>(i)];
}

PyObject* item(PyObject* self, Py_ssize_t i) {
  return answer([&] { return object_of(at(self, i)); });
}

int set_item(PyObject* self, Py_ssize_t i, PyObject* value) {
  return answer_or(-1, [&] {
    host::Value& place = at(self, i);
    if (value) {
      place = value_of(value);
    } else {
      list_in(self)->erase(list_in(self)->begin() + i);
    }
    return 0;
  });
}

PyObject* insert(PyObject* self, PyObject* arguments) {
  Py_ssize_t i;
  PyObject* value;
  if (!PyArg_ParseTuple(arguments, "nO:insert", &i, &value)) return nullptr;
  return answer([&] {
    if (i < 0) i += length(self);
    list_in(self)->insert(list_in(self)->begin() + std::clamp<Py_ssize_t>(i, 0, length(self)), value_of(value));
    return none();
  });
}

Ref as_list(PyObject* self) { return checked(PySequence_List(self)); }

PyObject* compare(PyObject* self, PyObject* other, int operation) {
  return answer([&] {
    const Ref mine = as_list(self);
    const Ref theirs = list_held_by(other) ? as_list(other) : Ref::share(other);
    return checked(PyObject_RichCompare(mine.get(), theirs.get(), operation));
  });
}

PyObject* representation(PyObject* self) {
  return answer([&] { return checked(PyObject_Repr(as_list(self).get())); });
}

PyObject* holder_type() {
  static PyMethodDef methods[] = {{"insert", insert, METH_VARARGS, "insert(index, value)"},
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

}  // namespace

Ref new_holder(const host::List& list) { return new_instance(holder_type(), list); }

const host::List* list_held_by(PyObject* object) {
  return Py_TYPE(object) == reinterpret_cast<PyTypeObject*>(holder_type()) ? &list_in(object) : nullptr;
}

}  // namespace vantorelix::maya
