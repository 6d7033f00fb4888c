// Host values as JSON texts: how they cross a C interface.
#pragma once

#include <string>

#include "host/value.h"

namespace vantorelix::standalone {

// A boolean, an integer, a real, a text, a list or null each become the value of that kind. Throws host::Error of kind
// value for anything else, and for a text that is not JSON.
host::Value value_of_json(const std::string& text);

// The other way. Bytes that are not UTF-8 are replaced by U+FFFD, and reals that are not finite by null. Throws
// host::Error of kind type for what JSON has not.
std::string json_of(const host::Value& value);

}  // namespace vantorelix::standalone
