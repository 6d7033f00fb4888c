// The published functions as Python calls them.
#pragma once

#include <string>
#include <vector>

#include "maya/extension/python/python.h"

namespace vantorelix::maya {

// The arguments of one call, bound to the parameters of its signature in order. Absent ones are null; arguments beyond
// the named ones (of a `*args`) are dropped.
class Arguments {
 public:
  static constexpr std::size_t kMax = 8;

  PyObject*& operator[](std::size_t i) { return bound_[i]; }
  PyObject* operator[](std::size_t i) const { return bound_[i]; }
  // None counts as absent.
  bool given(std::size_t i) const { return bound_[i] && bound_[i] != Py_None; }

 private:
  std::array<PyObject*, kMax> bound_{};
};

struct Function {
  const char* name;
  const char* signature;  // as in a script: "(obj, times, sampler=None)"; "(*args)" takes any
  Ref (*body)(const Arguments&);
  const char* summary;
};

// In the order of the module's text.
const std::vector<Function>& sampling_functions();
const std::vector<Function>& trail_functions();

// The callable for one of them; `function` must stay where it is. `module_name` is what its __module__ says.
Ref function_object(const Function& function, PyObject* module_name);

}  // namespace vantorelix::maya
