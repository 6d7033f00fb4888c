// The extension module: start(module) makes a plain module the engine's.
#include <cstdlib>

#include "engine/state/constants.h"
#include "engine/state/state.h"
#include "maya/extension/functions/functions.h"
#include "maya/extension/host/handles.h"
#include "maya/extension/python/types.h"
#include "maya/extension/views/records.h"

namespace vantorelix::maya {

namespace {

// --- the state, live both ways -----------------------------------------------------------------------------------

Ref callback_ids() {
  if (!_CB_ID) return none();
  const CallbackIds ids = *_CB_ID;
  if (const auto* const single = std::get_if<host::Value>(&ids)) return object_of(*single);
  return checked(PySequence_Tuple(object_of(std::get<std::vector<host::Value>>(ids)).get()));
}

void set_callback_ids(PyObject* value) {
  std::optional<CallbackIds> ids;
  if (PyTuple_Check(value)) {
    auto& several = ids.emplace().emplace<std::vector<host::Value>>();
    for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(value); ++i) several.push_back(value_of(PyTuple_GET_ITEM(value, i)));
  } else if (value != Py_None) {
    ids = value_of(value);
  }
  put(_CB_ID, std::move(ids));
}

// The registry stays the one object that it is; only its entries change.
void set_registry(PyObject* value) {
  Registry registry;
  for (const auto& [viz, settings] : pairs_of(value)) registry.set(text_of(viz.get()), settings_of(settings.get()));
  _REGISTRY.swap(registry);
}

struct Variable {
  const char* name;
  Ref (*read)();
  void (*write)(PyObject* value);
};

constexpr std::array<Variable, 8> kState = {{
    {"_REGISTRY", registry_object, set_registry},
    {"_CB_ID", callback_ids, set_callback_ids},
    {"_REBUILDING", [] { return object_of(_REBUILDING); }, [](PyObject* v) { _REBUILDING = truth(v); }},
    {"_GEN", [] { return object_of(_GEN); }, [](PyObject* v) { _GEN = integer_of(v); }},
    {"_PENDING", [] { return object_of(_PENDING); }, [](PyObject* v) { _PENDING = truth(v); }},
    {"_WORK", [] { return object_of(_WORK); }, [](PyObject* v) { put(_WORK, work_of(v)); }},
    {"_LAST_EDIT", [] { return object_of(_LAST_EDIT); }, [](PyObject* v) { _LAST_EDIT = number_of(v); }},
    {"_MSG_HANDLER", [] { return object_of(_MSG_HANDLER); }, [](PyObject* v) { _MSG_HANDLER = value_of(v); }},
}};

PyObject* read_variable(PyObject*, void* variable) {
  return answer([&] { return static_cast<const Variable*>(variable)->read(); });
}

int write_variable(PyObject*, PyObject* value, void* variable) {
  const auto* const known = static_cast<const Variable*>(variable);
  if (!value) {
    PyErr_Format(PyExc_AttributeError, "%s belongs to the engine and cannot be deleted; assign to it instead",
                 known->name);
    return -1;
  }
  return answer_or(-1, [&] {
    known->write(value);
    return 0;
  });
}

// dir(module): the dictionary's names and the state's.
PyObject* directory(PyObject* self, PyObject*) {
  return answer([&] {
    const Ref listed = checked(PyDict_Keys(PyModule_GetDict(self)));
    for (const Variable& variable : kState) check(PyList_Append(listed.get(), object_of(variable.name).get()));
    return listed;
  });
}

// A module whose state is the engine's.
Ref new_module_type() {
  static std::array<PyGetSetDef, kState.size() + 1> properties{};
  for (std::size_t i = 0; i < kState.size(); ++i) {
    properties[i] = {const_cast<char*>(kState[i].name), read_variable, write_variable, nullptr,
                     const_cast<Variable*>(&kState[i])};
  }
  static PyMethodDef methods[] = {{"__dir__", directory, METH_NOARGS, nullptr}, {nullptr, nullptr, 0, nullptr}};
  static PyType_Slot slots[] = {{Py_tp_getset, properties.data()}, {Py_tp_methods, methods}, {0, nullptr}};
  static PyType_Spec spec = {"Vantorelix_engine.Engine", 0, 0, Py_TPFLAGS_DEFAULT, slots};
  const Ref bases = checked(PyTuple_Pack(1, &PyModule_Type));
  return checked(PyType_FromSpecWithBases(&spec, bases.get()));
}

// --- starting ----------------------------------------------------------------------------------------------------

template <class T>
void define(const char* name, const T& value) {
  check(PyDict_SetItemString(module_dictionary(), name, object_of(value).get()));
}

Ref ramp_stops() {
  std::vector<Ref> stops;
  for (const RampStop& stop : _RAMP_STOPS) stops.push_back(tuple_of(stop.t, stop.colour));
  return object_of(stops);
}

void define_constants() {
  define("SCRIPT_NAME", SCRIPT_NAME);
  define("SCRIPT_VERSION", SCRIPT_VERSION);
  define("PLUGIN_FILE", PLUGIN_FILE);
  define("PLUGIN_BASENAME", PLUGIN_BASENAME);
  define("NODE_TYPE", NODE_TYPE);
  define("TRAIL_ROOT", TRAIL_ROOT);
  define("OPT_SAMPLES", OPT_SAMPLES);
  define("OPT_LINE_WIDTH", OPT_LINE_WIDTH);
  define("OPT_POINT_SIZE", OPT_POINT_SIZE);
  define("OPT_SHOW_LINE", OPT_SHOW_LINE);
  define("OPT_SHOW_DOTS", OPT_SHOW_DOTS);
  define("OPT_XRAY", OPT_XRAY);
  define("OPT_COLOR_MODE", OPT_COLOR_MODE);
  define("_CHUNK_BUDGET", _CHUNK_BUDGET);
  define("_DEBOUNCE", _DEBOUNCE);
  define("_CREATE_BUDGET", _CREATE_BUDGET);
  define("_SPACING_RED_MULT", _SPACING_RED_MULT);
  define("_VIEWPORT_TRAIL_FLAGS",
         checked(PySequence_Tuple(
             object_of(std::vector<std::string>(_VIEWPORT_TRAIL_FLAGS.begin(), _VIEWPORT_TRAIL_FLAGS.end())).get())));
  define("_RAMP_STOPS", ramp_stops());
}

void define_functions(const std::vector<Function>& functions, PyObject* module_name) {
  for (const Function& function : functions) define(function.name, function_object(function, module_name));
}

void forget_the_interpreter() { interpreter_has_ended = true; }

// The engine's state is one for the process, and what it refers to belongs to one interpreter.
void refuse_other_interpreters() {
  const bool another = PyThreadState_Get()->interp != PyInterpreterState_Main();
  if (!another && !interpreter_has_ended) return;
  PyErr_SetString(PyExc_ImportError,
                  another ? "Vantorelix_engine works in the main interpreter of a process only; import it there"
                          : "Vantorelix_engine cannot start again after its interpreter has ended; "
                            "start a new process");
  throw_python_error();
}

// The end of the interpreter, and of a process that does not end it first.
void watch_the_end() {
  static const bool watched = Py_AtExit(forget_the_interpreter) == 0 && std::atexit(forget_the_interpreter) == 0;
  if (!watched)
    throw host::Error(
        "Vantorelix_engine cannot register for the end of the interpreter; too many other modules have: start a new "
        "process");
}

PyObject* start(PyObject*, PyObject* module) {
  return answer([&] {
    refuse_other_interpreters();
    watch_the_end();
    if (!PyModule_Check(module))
      throw host::Error("start() takes one argument, the module Vantorelix_engine itself", host::ErrorKind::type);
    static PyObject* const type = new_module_type().release();
    const Ref previous = bind_module(module);  // let go last: what is in it may come back here
    check(PyObject_SetAttrString(module, "__class__", type));
    _initialise(python_handles());
    define_constants();
    const Ref module_name = global(name<"__name__">());
    define_functions(sampling_functions(), module_name.get());
    define_functions(trail_functions(), module_name.get());
    define("__all__", __all__);
    return none();
  });
}

}  // namespace

}  // namespace vantorelix::maya

#ifndef _WIN32
// Visible: before 3.9 PyMODINIT_FUNC does not say so.
extern "C" [[gnu::visibility("default")]] PyObject* PyInit__vantorelix();
#endif

PyMODINIT_FUNC PyInit__vantorelix() {
  static PyMethodDef methods[] = {{"start", vantorelix::maya::start, METH_O,
                                   "start(module): fills a module that has bound its handles with the engine, anew"},
                                  {nullptr, nullptr, 0, nullptr}};
  static PyModuleDef_Slot slots[] = {{0, nullptr}};
  static PyModuleDef definition = {PyModuleDef_HEAD_INIT,
                                   "_vantorelix",
                                   "The compiled part of Vantorelix_engine.",
                                   0,
                                   methods,
                                   slots,
                                   nullptr,
                                   nullptr,
                                   nullptr};
  return PyModuleDef_Init(&definition);
}
