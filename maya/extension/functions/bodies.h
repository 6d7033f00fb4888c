// What the bodies of published functions have in common.
#pragma once

#include <utility>

#include "maya/extension/functions/functions.h"
#include "maya/extension/values/values.h"

namespace vantorelix::maya {

inline std::string text(const Arguments& a, std::size_t i) { return text_of(a[i]); }
inline double number(const Arguments& a, std::size_t i) { return number_of(a[i]); }
// An argument that the engine only hands on; `otherwise` where it is absent.
inline host::Value value(const Arguments& a, std::size_t i, host::Value otherwise = {}) {
  return a[i] ? value_of(a[i]) : std::move(otherwise);
}

// Argument i, or a new object: the engine was given `given` for it and has returned `back`. Where they are equal, it
// has handed the argument on, and the script gets the very object that it passed.
inline Ref same_or_new(const Arguments& a, std::size_t i, const host::Value& given, const host::Value& back) {
  return a.given(i) && back == given ? Ref::share(a[i]) : object_of(back);
}

// A function without arguments or result, and one with a result.
template <void (*F)()>
Ref run(const Arguments&) {
  F();
  return none();
}
template <auto F>
Ref result(const Arguments&) {
  return object_of(F());
}
// A function of one value without result.
template <void (*F)(const host::Value&)>
Ref take(const Arguments& a) {
  F(value(a, 0));
  return none();
}

}  // namespace vantorelix::maya
