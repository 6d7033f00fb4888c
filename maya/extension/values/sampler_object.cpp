// Samplers as callables, and callables as samplers.
#include "maya/extension/values/sampler_object.h"
#include "maya/extension/python/types.h"
#include "maya/extension/values/values.h"

namespace vantorelix::maya {

namespace {

class PythonSampler : public Sampler {
 public:
  explicit PythonSampler(PyObject* callable) : callable_(Ref::share(callable)) {}
  Position operator()(double t) override {
    const Ref time = object_of(t);
    return vector_of(call(callable_.get(), std::array{time.get()}.data(), 1).get());
  }

 private:
  Ref callable_;
};

PyObject* sample(PyObject* self, PyObject* arguments, PyObject* keywords) {
  static char t[] = "t";
  static char* names[] = {t, nullptr};
  double time;
  if (!PyArg_ParseTupleAndKeywords(arguments, keywords, "d:sampler", names, &time)) return nullptr;
  return answer([&] {
    const SamplerPtr sampler = content_of<SamplerPtr>(self);
    return object_of((*sampler)(time));
  });
}

PyObject* sampler_type() {
  static PyType_Slot slots[] = {{Py_tp_call, reinterpret_cast<void*>(sample)},
                                {Py_tp_doc, const_cast<char*>("sampler(t): the position at a time in frames")},
                                {0, nullptr}};
  static PyObject* const made = new_type<SamplerPtr>("Vantorelix_engine.Sampler", slots).release();
  return made;
}

}  // namespace

Ref sampler_object(const SamplerPtr& sampler) { return new_instance(sampler_type(), sampler); }

SamplerPtr sampler_of(PyObject* callable) {
  if (!callable || callable == Py_None) return nullptr;
  if (Py_TYPE(callable) == reinterpret_cast<PyTypeObject*>(sampler_type())) return content_of<SamplerPtr>(callable);
  return std::make_shared<PythonSampler>(callable);
}

}  // namespace vantorelix::maya
