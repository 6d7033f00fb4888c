#include "maya/extension/host/handles.h"

#include "maya/extension/host/commands.h"
#include "maya/extension/host/interpreter.h"
#include "maya/extension/host/object_model.h"

namespace vantorelix::maya {

namespace {
PyObject* dictionary = nullptr;  // owned
}

Ref bind_module(PyObject* module) {
  return Ref(std::exchange(dictionary, Ref::share(PyModule_GetDict(module)).release()));
}

PyObject* module_dictionary() { return dictionary; }

namespace {

// A number that changes with every change of the dictionary, and is never the same for two dictionaries. 0 where the
// interpreter has none.
#if PY_VERSION_HEX < 0x030C0000
constexpr bool kStatesAreNumbered = true;
std::uint64_t state_of(PyObject* items) { return reinterpret_cast<PyDictObject*>(items)->ma_version_tag; }
#else
constexpr bool kStatesAreNumbered = false;
std::uint64_t state_of(PyObject*) { return 0; }
#endif

}  // namespace

Ref global(PyObject* named) {
  PyObject* const found = dictionary ? PyDict_GetItemWithError(dictionary, named) : nullptr;
  if (found) return Ref::share(found);
  if (!PyErr_Occurred()) PyErr_Format(PyExc_NameError, "name '%U' is not defined", named);
  throw_python_error();
}

Ref GlobalAttribute::operator()() {
  if (found_ && module_state_ == state_of(dictionary) && handle_state_ == state_of(handles_dictionary_))
    return Ref::share(found_);
  found_ = nullptr;
  const Ref object = global(handle_);
  // A plain module's attributes are its dictionary's items: nothing else need be asked while they are there.
  if (!PyModule_CheckExact(object.get())) return attribute(object.get(), named_);
  const std::uint64_t module_state = state_of(dictionary);  // before the look-up below, which may change it
  PyObject* const items = PyModule_GetDict(object.get());
  Ref found = Ref::share(PyDict_GetItemWithError(items, named_));
  if (!found && PyErr_Occurred()) throw_python_error();
  if (!found) return attribute(object.get(), named_);
  if (kStatesAreNumbered) {
    found_ = found.get();
    handles_dictionary_ = items;
    module_state_ = module_state;
    handle_state_ = state_of(items);
  }
  return found;
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
