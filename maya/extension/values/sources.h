// Sequences of triples that came from a script: handed on, they go out as the very objects that came in, and nothing is
// converted twice.
#pragma once

#include "base/vector.h"
#include "maya/extension/python/python.h"

namespace vantorelix::maya {

// The triples of a sequence, which remember it.
std::shared_ptr<std::vector<Vector>> vectors_from(PyObject* sequence);

// The triples as a list of tuples, or the sequence they came from.
Ref script_list(const Vectors& values);

}  // namespace vantorelix::maya
