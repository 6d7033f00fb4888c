#include "maya/extension/sources.h"

#include <memory>

#include "maya/extension/values.h"

namespace vantorelix::maya {

namespace {
Sources* innermost = nullptr;
}

Sources::Sources() : outer_(std::exchange(innermost, this)) {}
Sources::~Sources() { innermost = outer_; }

host::Vectors Sources::vectors(PyObject* sequence) {
  auto values = std::make_shared<const std::vector<host::Vector>>(vectors_of(sequence));
  remember(values, Ref::share(sequence));
  return values;
}

void Sources::remember(const host::Vectors& values, Ref list) { pairs_.push_back({values, std::move(list)}); }

Ref script_list(const host::Vectors& values) {
  for (const Sources* scope = innermost; scope; scope = scope->outer_) {
    for (const auto& [known, list] : scope->pairs_) {
      if (known == values) return list;
    }
  }
  return object_of(*values);
}

}  // namespace vantorelix::maya
