// The module that scripts see, and the calls that the engine makes through its handles.
#pragma once

#include <cstdint>

#include "engine/state/state.h"
#include "maya/extension/python/python.h"
#include "maya/extension/values/values.h"

namespace vantorelix::maya {

// The module is remembered with everything in it, until another one takes its place. Returns the dictionary of the one
// before, if any.
Ref bind_module(PyObject* module);
// The dictionary of the bound module. Borrowed.
PyObject* module_dictionary();
// What the bound module holds under a name, now. Throws a NameError when it holds nothing.
Ref global(PyObject* named);

// HANDLE.NAME as it is now: what a handle of the bound module has under a name. Where the interpreter numbers the
// states of its dictionaries (before 3.12), what was found is taken again while both are in the state in which it was
// found. On C types sampling takes 0.84 to 0.92 of the time that two look-ups each need, and an edit 0.59 to 0.74
// (bench/python/bench.py FOLDER --before OTHER, where the other build has no kStatesAreNumbered).
class GlobalAttribute {
 public:
  // Both names are interned and outlive it.
  constexpr GlobalAttribute(PyObject* handle, PyObject* named) : handle_(handle), named_(named) {}
  Ref operator()();

 private:
  PyObject* handle_;
  PyObject* named_;
  PyObject* handles_dictionary_ = nullptr;  // borrowed, as is what was found: the states say that they are there
  PyObject* found_ = nullptr;
  std::uint64_t module_state_ = 0, handle_state_ = 0;
};

template <Text Handle, Text Name>
Ref global_attribute() {
  static GlobalAttribute known(name<Handle>(), name<Name>());
  return known();
}

// The host whose commands are the module's cmds, om, oma, os, sys and time. Lives as long as the process.
Handles python_handles();

// function(positional..., K=keyword...): the last sizeof...(K) arguments go to the keywords.
template <Text... K, class... A>
Ref call_with(PyObject* function, const A&... arguments) {
  const std::array<Ref, sizeof...(A)> owned = {object_of(arguments)...};
  std::array<PyObject*, sizeof...(A) + 1> borrowed{};
  for (std::size_t i = 0; i < owned.size(); ++i) borrowed[i] = owned[i].get();
  return call(function, borrowed.data(), sizeof...(A) - sizeof...(K), names<K...>());
}

}  // namespace vantorelix::maya
