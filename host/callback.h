// A module function handed to the host: for a deferred call or a message.
#pragma once

#include <string>

namespace vantorelix::host {

// `name` is the function's published name and its identity: a scripting host hands out its own function object
// of that name. The function ignores whatever the host would pass, so it takes nothing here.
struct Callback {
  const char* name;
  void (*function)();

  friend bool operator==(const Callback& a, const Callback& b) { return a.function == b.function; }
};

}  // namespace vantorelix::host
