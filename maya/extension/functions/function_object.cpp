#include <map>

#include "maya/extension/functions/functions.h"
#include "maya/extension/python/types.h"

namespace vantorelix::maya {

namespace {

// A function with its signature taken apart.
struct Published {
  const Function* function = nullptr;
  std::vector<PyObject*> parameters;  // interned names
  std::size_t required = 0;           // the first so many
  bool any = false;                   // takes any number of positional arguments
  std::string doc;
  PyMethodDef definition{};
};

std::vector<std::string> parts_of(const std::string& signature) {
  std::vector<std::string> parts;
  std::string part;
  for (const char c : signature.substr(1)) {
    if (c == ',' || c == ')') {
      if (!part.empty()) parts.push_back(part);
      part.clear();
    } else if (c != ' ') {
      part += c;
    }
  }
  return parts;
}

[[noreturn]] void wrong_count(const Published& published, std::size_t given) {
  PyErr_Format(PyExc_TypeError, "%s() takes %zu positional argument%s but %zu %s given", published.function->name,
               published.parameters.size(), published.parameters.size() == 1 ? "" : "s", given,
               given == 1 ? "was" : "were");
  throw_python_error();
}

std::size_t parameter_named(const Published& published, PyObject* keyword) {
  for (std::size_t i = 0; i < published.parameters.size(); ++i) {
    if (PyUnicode_Compare(published.parameters[i], keyword) == 0) return i;
  }
  PyErr_Format(PyExc_TypeError, "%s() got an unexpected keyword argument '%U'", published.function->name, keyword);
  throw_python_error();
}

Arguments bind(const Published& published, PyObject* const* values, std::size_t count, PyObject* keywords) {
  Arguments arguments;
  if (count > published.parameters.size() && !published.any) wrong_count(published, count);
  for (std::size_t i = 0; i < std::min(count, published.parameters.size()); ++i) arguments[i] = values[i];
  const Py_ssize_t named = keywords ? PyTuple_GET_SIZE(keywords) : 0;
  for (Py_ssize_t k = 0; k < named; ++k) {
    PyObject* const keyword = PyTuple_GET_ITEM(keywords, k);
    PyObject*& place = arguments[parameter_named(published, keyword)];
    if (place) {
      PyErr_Format(PyExc_TypeError, "%s() got multiple values for argument '%U'", published.function->name, keyword);
      throw_python_error();
    }
    place = values[count + static_cast<std::size_t>(k)];
  }
  for (std::size_t i = 0; i < published.required; ++i) {
    if (arguments[i]) continue;
    PyErr_Format(PyExc_TypeError, "%s() missing required argument: '%U'", published.function->name,
                 published.parameters[i]);
    throw_python_error();
  }
  return arguments;
}

PyObject* run(PyObject* self, PyObject* const* values, Py_ssize_t count, PyObject* keywords) {
  return answer([&] {
    const auto& published = *static_cast<const Published*>(PyCapsule_GetPointer(self, nullptr));
    return published.function->body(bind(published, values, static_cast<std::size_t>(count), keywords));
  });
}

void publish(const Function& function, Published& published) {
  published.function = &function;
  published.doc = std::string(function.name) + function.signature + "\n--\n\n" + function.summary;
  published.definition.ml_name = function.name;
  published.definition.ml_meth = reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(run));
  published.definition.ml_flags = METH_FASTCALL | METH_KEYWORDS;
  published.definition.ml_doc = published.doc.c_str();
  for (const std::string& part : parts_of(published.function->signature)) {
    if (part.front() == '*') {
      published.any = true;
      continue;
    }
    const std::size_t equals = part.find('=');
    if (equals == std::string::npos) ++published.required;
    published.parameters.push_back(PyUnicode_InternFromString(part.substr(0, equals).c_str()));
  }
}

}  // namespace

Ref function_object(const Function& function, PyObject* module_name) {
  static auto& all = *new std::map<const Function*, Published>;  // as long as the process: callables point into it
  Published& published = all[&function];
  if (!published.function) publish(function, published);
  const Ref capsule = checked(PyCapsule_New(&published, nullptr, nullptr));
  return checked(PyCFunction_NewEx(&published.definition, capsule.get(), module_name));
}

}  // namespace vantorelix::maya
