#include "maya/extension/values/sources.h"

#include <memory>
#include <vector>

#include "maya/extension/values/values.h"

namespace vantorelix::maya {

namespace {

// The deleter of the vector holds the sequence that it was made of, so that the sequence lives exactly as long.
struct FromScript {
  Ref sequence;
  void operator()(const std::vector<Vector>* values) const { delete values; }
};

}  // namespace

std::shared_ptr<std::vector<Vector>> vectors_from(PyObject* sequence) {
  auto values = std::make_unique<std::vector<Vector>>(vectors_of(sequence));
  return {values.release(), FromScript{Ref::share(sequence)}};
}

Ref script_list(const Vectors& values) {
  if (const auto* const source = std::get_deleter<FromScript>(values)) return source->sequence;
  return object_of(*values);
}

}  // namespace vantorelix::maya
