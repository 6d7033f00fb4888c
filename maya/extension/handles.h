// The module that scripts see, and the calls that the engine makes through its handles.
#pragma once

#include "engine/frame/state.h"
#include "maya/extension/python.h"
#include "maya/extension/values.h"

namespace vantorelix::maya {

// The module is remembered with everything in it, until another one takes its place.
void bind_module(PyObject* module);
// The dictionary of the bound module. Borrowed.
PyObject* module_dictionary();
// What the bound module holds under a name, now. Throws a NameError when it holds nothing.
Ref global(PyObject* named);
// HANDLE.NAME as it is now: what a handle of the bound module has under a name.
Ref global_attribute(PyObject* handle, PyObject* named);

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
