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

Ref global(PyObject* named) {
  PyObject* const found = dictionary ? PyDict_GetItemWithError(dictionary, named) : nullptr;
  if (!found) {
    if (!PyErr_Occurred()) PyErr_Format(PyExc_NameError, "name '%U' is not defined", named);
    throw_python_error();
  }
  return Ref::share(found);
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
