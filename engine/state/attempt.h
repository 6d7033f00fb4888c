// The guard around everything that may fail without consequence.
#pragma once

#include <exception>
#include <utility>

namespace vantorelix {

// Runs `body` and swallows an ordinary error; false when there was one. An interrupt passes through.
template <class Body>
bool attempt(Body&& body) {
  try {
    std::forward<Body>(body)();
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace vantorelix
