// Sequences of triples that came from a script, kept beside what the engine made of them: handed on, they go out as the
// very objects that came in, and nothing is converted twice.
#pragma once

#include <vector>

#include "host/vector.h"
#include "maya/extension/python.h"

namespace vantorelix::maya {

// As long as it lives, script_list knows the vectors it made.
class Sources {
 public:
  Sources();
  ~Sources();
  Sources(const Sources&) = delete;
  Sources& operator=(const Sources&) = delete;

  // The triples of a sequence.
  host::Vectors vectors(PyObject* sequence);
  // Says that `list` holds the same triples as `values`.
  void remember(const host::Vectors& values, Ref list);

 private:
  friend Ref script_list(const host::Vectors&);
  struct Pair {
    host::Vectors values;
    Ref list;
  };
  std::vector<Pair> pairs_;
  Sources* outer_;
};

// The triples as a list of tuples, or the sequence they came from.
Ref script_list(const host::Vectors& values);

}  // namespace vantorelix::maya
