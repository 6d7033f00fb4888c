#include "maya/extension/host/interpreter.h"

#include "host/error.h"
#include "maya/extension/host/handles.h"

namespace vantorelix::maya {

namespace {

Ref process_environment() { return global_attribute<"os", "environ">(); }

Ref imported(const std::string& module) {
  const Ref named = object_of(module);
  return checked(PyImport_Import(named.get()));
}

void call_without_arguments(const Ref& function) { call(function.get(), nullptr, 0); }

class PythonModule : public host::Module {
 public:
  explicit PythonModule(Ref module) : module_(std::move(module)) {}

  bool has_attribute(const std::string& name) override {
    PyObject* const found = PyObject_GetAttr(module_.get(), object_of(name).get());
    if (!found) {
      if (!PyErr_ExceptionMatches(PyExc_AttributeError)) throw_python_error();
      PyErr_Clear();
    }
    return static_cast<bool>(Ref(found));
  }
  void call(const std::string& name) override {
    call_without_arguments(attribute(module_.get(), object_of(name).get()));
  }

 private:
  Ref module_;
};

}  // namespace

double Interpreter::time() {
  const Ref function = global_attribute<"time", "time">();
  return number_of(call(function.get(), nullptr, 0).get());
}

void Interpreter::print(const std::string& line) {
  const Ref function = Ref::share(PyDict_GetItem(PyEval_GetBuiltins(), name<"print">()));
  if (!function) throw host::Error("name 'print' is not defined");
  call_with<>(function.get(), line);
}

std::shared_ptr<host::Module> Interpreter::import_module(const std::string& name) {
  return std::make_shared<PythonModule>(imported(name));
}

void Interpreter::call_imported(const std::string& module, const std::string& name) {
  const Ref found = imported(module);
  PyObject* const function = PyObject_GetAttr(found.get(), object_of(name).get());
  if (!function) {
    PyErr_Clear();
    throw host::Error("cannot import name '" + name + "' from '" + module + "'", host::ErrorKind::import);
  }
  call_without_arguments(Ref(function));
}

std::string Interpreter::module_file() {
  const Ref file = Ref::share(PyDict_GetItem(module_dictionary(), name<"__file__">()));
  return file && PyUnicode_Check(file.get()) ? text_of(file.get()) : std::string();
}

std::vector<host::Value> Interpreter::module_search_path() {
  const Ref path = global_attribute<"sys", "path">();
  const Ref snapshot = checked(PySequence_List(path.get()));
  std::vector<host::Value> entries;
  for (Py_ssize_t i = 0; i < PyList_GET_SIZE(snapshot.get()); ++i)
    entries.push_back(value_of(PyList_GET_ITEM(snapshot.get(), i)));
  return entries;
}

std::optional<std::string> Interpreter::environment(const std::string& name) {
  const Ref get = attribute(process_environment().get(), maya::name<"get">());
  const Ref value = call_with<>(get.get(), name);
  if (value.get() == Py_None) return std::nullopt;
  return text_of(value.get());
}

void Interpreter::set_environment(const std::string& name, const std::string& value) {
  check(PyObject_SetItem(process_environment().get(), object_of(name).get(), object_of(value).get()));
}

}  // namespace vantorelix::maya
