// Types of our own, made at run time: what a script sees of the engine's records.
#pragma once

#include <exception>
#include <memory>
#include <optional>
#include <utility>

#include "host/error.h"
#include "maya/extension/python/python.h"

namespace vantorelix::maya {

// An instance of one of our types: the interpreter's header, then a C++ object.
template <class T>
struct Instance {
  PyObject header;
  T content;
};

template <class T>
T& content_of(PyObject* object) {
  return reinterpret_cast<Instance<T>*>(object)->content;
}

// A new instance of a type made by new_type<T>.
template <class T>
Ref new_instance(PyObject* type, T content) {
  auto* const python_type = reinterpret_cast<PyTypeObject*>(type);
  Ref object = checked(python_type->tp_alloc(python_type, 0));
  new (&content_of<T>(object.get())) T(std::move(content));
  return object;
}

// Contents that wait to be let go.
struct Waiting {
  virtual ~Waiting() = default;
  std::unique_ptr<Waiting> next;
};
inline std::unique_ptr<Waiting> waiting;
inline int letting_go = 0;  // how deep

// Destroys a content. Objects of ours may hold each other in chains of any length; the stack holds the first of them,
// and the rest wait their turn.
template <class T>
void let_go(T content) {
  constexpr int kDeepest = 32;
  struct Held : Waiting {
    explicit Held(T held) : content(std::move(held)) {}
    T content;
  };
  if (letting_go >= kDeepest) {
    auto held = std::make_unique<Held>(std::move(content));
    held->next = std::move(waiting);
    waiting = std::move(held);
    return;
  }
  ++letting_go;
  std::optional<T> last(std::move(content));
  last.reset();
  while (letting_go == 1 && waiting) {
    const std::unique_ptr<Waiting> first = std::move(waiting);
    waiting = std::move(first->next);
  }
  --letting_go;
}

template <class T>
void destroy_instance(PyObject* object) {
  PyTypeObject* const type = Py_TYPE(object);
  T content = std::move(content_of<T>(object));
  content_of<T>(object).~T();
  let_go(std::move(content));
  type->tp_free(object);
#if PY_VERSION_HEX >= 0x03080000
  Py_DECREF(type);
#else
  // Until 3.7 a derived type lets go of itself.
  if (type->tp_dealloc == &destroy_instance<T>) Py_DECREF(type);
#endif
}

// A type whose instances hold a T. `slots` ends with {0, nullptr} and names neither destructor nor constructor: only
// the extension makes instances. With `abstract`, the name of a class in collections.abc, the type is derived from that
// as well and gets everything that follows from the few methods in the slots.
template <class T>
Ref new_type(const char* name, PyType_Slot* slots, const char* abstract = nullptr);

Ref new_type_of_size(const char* name, std::size_t size, destructor destroy, PyType_Slot* slots, const char* abstract);

template <class T>
Ref new_type(const char* name, PyType_Slot* slots, const char* abstract) {
  return new_type_of_size(name, sizeof(Instance<T>), &destroy_instance<T>, slots, abstract);
}

// Bodies of slots and methods: an exception of the body becomes the interpreter's error.
// Nothing else is caught: a thread that the interpreter ends while it shuts down unwinds through here, and must be let
// pass.
template <class Result, class Body>
Result answer_or(Result failed, Body&& body) {
  try {
    return body();
  } catch (const std::exception&) {
    set_python_error();
  } catch (const host::Interrupt&) {
    set_python_error();
  }
  return failed;
}
template <class Body>
PyObject* answer(Body&& body) {
  return answer_or<PyObject*>(nullptr, [&] { return body().release(); });
}

}  // namespace vantorelix::maya
