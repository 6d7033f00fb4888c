#include <exception>
#include <new>
#include <string>

#include "host/error.h"
#include "maya/extension/python/python.h"
#include "maya/extension/values/values.h"

namespace vantorelix::maya {

namespace {

using host::ErrorKind;

// The Python exception that a host::Error or host::Interrupt carries as its cause.
struct PythonException {
  Ref object;
};

struct KindOf {
  ErrorKind kind;
  PyObject* type;
};

// Derived classes before their bases: the first match counts.
const std::array<KindOf, 10>& kinds() {
  static const std::array<KindOf, 10> all = {{{ErrorKind::type, PyExc_TypeError},
                                              {ErrorKind::value, PyExc_ValueError},
                                              {ErrorKind::key, PyExc_KeyError},
                                              {ErrorKind::index, PyExc_IndexError},
                                              {ErrorKind::attribute, PyExc_AttributeError},
                                              {ErrorKind::zero_division, PyExc_ZeroDivisionError},
                                              {ErrorKind::overflow, PyExc_OverflowError},
                                              {ErrorKind::import, PyExc_ImportError},
                                              {ErrorKind::os, PyExc_OSError},
                                              {ErrorKind::runtime, PyExc_RuntimeError}}};
  return all;
}

Ref take_current() {
#if PY_VERSION_HEX >= 0x030C0000
  return Ref(PyErr_GetRaisedException());
#else
  PyObject *type, *value, *traceback;
  PyErr_Fetch(&type, &value, &traceback);
  PyErr_NormalizeException(&type, &value, &traceback);
  if (traceback) PyException_SetTraceback(value, traceback);
  Py_XDECREF(type);
  Py_XDECREF(traceback);
  return Ref(value);
#endif
}

void make_current(const Ref& exception) {
#if PY_VERSION_HEX >= 0x030C0000
  PyErr_SetRaisedException(Ref(exception).release());
#else
  PyObject* const object = exception.get();
  PyErr_Restore(Ref::share(reinterpret_cast<PyObject*>(Py_TYPE(object))).release(), Ref(exception).release(),
                PyException_GetTraceback(object));
#endif
}

ErrorKind kind_of(PyObject* exception) {
  for (const auto& [kind, type] : kinds()) {
    if (PyErr_GivenExceptionMatches(exception, type)) return kind;
  }
  return ErrorKind::runtime;
}

// True when `cause` held an exception of the interpreter's.
bool restore(const std::exception_ptr& cause) {
  if (!cause) return false;
  try {
    std::rethrow_exception(cause);
  } catch (const PythonException& exception) {
    make_current(exception.object);
    return true;
  } catch (...) {
    return false;
  }
}

// The text of a host::Error of kind key is the quoted key; Python's KeyError holds the key itself.
std::string argument_of(const host::Error& error) {
  const std::string text = error.what();
  const bool quoted = error.kind() == ErrorKind::key && text.size() >= 2 && text.front() == '\'' && text.back() == '\'';
  return quoted ? text.substr(1, text.size() - 2) : text;
}

void set_new(const host::Error& error) {
  const std::string text = argument_of(error);
  for (const auto& [kind, type] : kinds()) {
    if (kind == error.kind()) return PyErr_SetString(type, text.c_str());
  }
}

}  // namespace

void throw_python_error() {
  const Ref exception = take_current();
  const auto cause = std::make_exception_ptr(PythonException{exception});
  if (!PyErr_GivenExceptionMatches(exception.get(), PyExc_Exception)) throw host::Interrupt(cause);
  const Ref text(PyObject_Str(exception.get()));
  if (!text) PyErr_Clear();  // an exception that cannot say what it is still is that exception
  throw host::Error(text ? text_of(text.get()) : std::string(), kind_of(exception.get()), cause);
}

void set_python_error() {
  try {
    throw;
  } catch (const host::Error& error) {
    if (!restore(error.cause())) set_new(error);
  } catch (const host::Interrupt& interrupt) {
    if (!restore(interrupt.cause())) PyErr_SetNone(PyExc_KeyboardInterrupt);
  } catch (const std::bad_alloc&) {
    PyErr_NoMemory();
  } catch (const std::exception& error) {
    PyErr_SetString(PyExc_RuntimeError, error.what());
  }
}

}  // namespace vantorelix::maya
