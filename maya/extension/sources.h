// Sequences of triples that came from a script: handed on, they go out as the very objects that came in, and nothing is
// converted twice.
#pragma once

#include "host/vector.h"
#include "maya/extension/python.h"

namespace vantorelix::maya {

// The triples of a sequence, which remember it.
std::shared_ptr<std::vector<host::Vector>> vectors_from(PyObject* sequence);

// The triples as a list of tuples, or the sequence they came from.
Ref script_list(const host::Vectors& values);

}  // namespace vantorelix::maya
