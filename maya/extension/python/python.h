// Python's objects and calls, with ownership and errors as C++ has them. Everything runs under the interpreter's lock.
//
// The rules of re-entrancy, for every file of this folder. A call into Python may run any code, and so may letting go
// of a reference, making an object (the collector runs then) or a conversion: a step, a clear or a reload of this
// engine, in this thread or, as the lock changes hands, in another. Therefore:
//
// 1. Own what you use across such a call: a Ref, a shared_ptr or a copy. A borrowed reference, an iterator or a C++
//    reference into a container that scripts can reach ends before it. (What a caller passed, the caller owns
//    meanwhile.)
// 2. Take a value out of its place before letting go of it: `put`, OrderedMap and the assignments of Ref and Value do
// so.
// 3. What the engine only hands on stays the object that it is, and is never looked into (value_of). Conversions that
// are
//    needed raise what Python raises; of a sequence each item is owned while it is converted, and the length is asked
//    anew.
// 4. No scope may rely on ending before those that began earlier: nested calls do, other threads' do not.
// 5. When the interpreter is gone, nothing of ours is decremented: interpreter_has_ended.
// 6. One interpreter: `start` refuses every other with an ImportError.
#pragma once

#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#if defined(_WIN32) && PY_VERSION_HEX < 0x03090000
// The interpreter's library keeps its own function to itself there; this one makes the bound object.
inline int _PyObject_GetMethod(PyObject* object, PyObject* named, PyObject** method) {
  *method = PyObject_GetAttr(object, named);
  return 0;
}
#else
// What the interpreter itself calls methods with. Every version has it, and not every version's header.
extern "C" {
PyAPI_FUNC(int) _PyObject_GetMethod(PyObject* object, PyObject* named, PyObject** method);
}
#endif

namespace vantorelix::maya {

// Set when the interpreter has ended, or the process ends without ending it: what the engine's state refers to may have
// gone by then, or belong to threads that still run.
inline bool interpreter_has_ended = false;

// An owned reference, or none.
class Ref {
 public:
  Ref() = default;
  // Takes over a new reference.
  explicit Ref(PyObject* owned) : object_(owned) {}
  // Shares a borrowed one.
  static Ref share(PyObject* borrowed) {
    Py_XINCREF(borrowed);
    return Ref(borrowed);
  }
  Ref(const Ref& other) : object_(other.object_) { Py_XINCREF(object_); }
  Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Ref& operator=(Ref other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Ref() {
    if (!interpreter_has_ended) Py_XDECREF(object_);
  }

  PyObject* get() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }
  PyObject* release() { return std::exchange(object_, nullptr); }

 private:
  PyObject* object_ = nullptr;
};

// --- errors ------------------------------------------------------------------------------------------------------

// Throws the interpreter's current error: host::Error where a script's `except Exception` would catch it, otherwise
// host::Interrupt. Either carries the exception object.
[[noreturn]] void throw_python_error();
// Makes the C++ exception that is being handled the interpreter's current error: the very object that came in, or a
// new one of the same kind and text.
void set_python_error();

// A new reference from the interpreter, or its error.
inline Ref checked(PyObject* owned) {
  if (!owned) throw_python_error();
  return Ref(owned);
}
inline void check(int status) {
  if (status < 0) throw_python_error();
}
inline bool truth(PyObject* object) {
  const int answer = PyObject_IsTrue(object);
  check(answer);
  return answer != 0;
}

// --- names -------------------------------------------------------------------------------------------------------

template <std::size_t N>
struct Text {
  char data[N] = {};
  constexpr Text(const char (&text)[N]) { std::copy_n(text, N, data); }
};

// The interned string, made once. Borrowed.
template <Text T>
PyObject* name() {
  static PyObject* const interned = PyUnicode_InternFromString(T.data);
  return interned;
}

// A tuple of interned strings, made once; null when there are none. Borrowed.
template <Text... T>
PyObject* names() {
  if constexpr (sizeof...(T) == 0) {
    return nullptr;
  } else {
    static PyObject* const tuple = PyTuple_Pack(sizeof...(T), name<T>()...);
    return tuple;
  }
}

// --- calls -------------------------------------------------------------------------------------------------------

// Calls with `count` positional arguments, followed in the array by one value for each of `keywords`.
inline Ref call(PyObject* function, PyObject* const* arguments, std::size_t count, PyObject* keywords = nullptr) {
#if PY_VERSION_HEX >= 0x03090000
  return checked(PyObject_Vectorcall(function, arguments, count, keywords));
#elif PY_VERSION_HEX >= 0x03080000
  return checked(_PyObject_Vectorcall(function, arguments, count, keywords));
#else
  return checked(_PyObject_FastCallKeywords(function, arguments, static_cast<Py_ssize_t>(count), keywords));
#endif
}

inline Ref attribute(PyObject* object, PyObject* named) { return checked(PyObject_GetAttr(object, named)); }

// object.M for calls: looked up once, and without the bound object that a script would get. With it, sampling takes
// 1.23 times as long on CPython 3.11 and 1.25 on 3.13, but 0.86 on 3.7 (bench/python/bench.py FOLDER --before OTHER).
template <Text M>
class Method {
 public:
  // `object` must outlive it.
  explicit Method(PyObject* object) : object_(object) {
    PyObject* found = nullptr;
    unbound_ = _PyObject_GetMethod(object, name<M>(), &found) != 0;
    function_ = checked(found);
  }

  template <class... Arguments>
  Ref operator()(const Arguments&... arguments) const {
    const std::array<PyObject*, 1 + sizeof...(arguments)> all = {object_, arguments...};
    return unbound_ ? call(function_.get(), all.data(), all.size())
                    : call(function_.get(), all.data() + 1, sizeof...(arguments));
  }

 private:
  PyObject* object_;
  Ref function_;
  bool unbound_;
};

// object.M(arguments...)
template <Text M, class... Arguments>
Ref method(PyObject* object, const Arguments&... arguments) {
  return Method<M>(object)(arguments...);
}

}  // namespace vantorelix::maya
