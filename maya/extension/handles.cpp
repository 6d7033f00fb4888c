#include "maya/extension/handles.h"

#include "maya/extension/commands.h"
#include "maya/extension/interpreter.h"
#include "maya/extension/object_model.h"

namespace vantorelix::maya {

namespace {
PyObject* dictionary = nullptr;  // owned
}

void bind_module(PyObject* module) {
  Ref previous(dictionary);
  dictionary = Ref::share(PyModule_GetDict(module)).release();
}

PyObject* module_dictionary() { return dictionary; }

namespace {

// Borrowed.
PyObject* find_global(PyObject* named) {
  PyObject* const found = dictionary ? PyDict_GetItemWithError(dictionary, named) : nullptr;
  if (found) return found;
  if (!PyErr_Occurred()) PyErr_Format(PyExc_NameError, "name '%U' is not defined", named);
  throw_python_error();
}

}  // namespace

Ref global(PyObject* named) { return Ref::share(find_global(named)); }

Ref global_attribute(PyObject* handle, PyObject* named) {
  PyObject* const object = find_global(handle);
  // A plain module's attributes are its dictionary's items: nothing else need be asked while they are there.
  if (PyModule_CheckExact(object)) {
    if (PyObject* const found = PyDict_GetItemWithError(PyModule_GetDict(object), named)) return Ref::share(found);
    if (PyErr_Occurred()) throw_python_error();
  }
  return attribute(Ref::share(object).get(), named);
}

Handles python_handles() {
  // Never destroyed: at exit the interpreter may be gone before they are.
  static auto& commands = *new Commands;
  static auto& objects = *new Objects;
  static auto& animation = *new Animation;
  static auto& interpreter = *new Interpreter;
  return {&commands, &objects, &animation, &interpreter};
}

}  // namespace vantorelix::maya
