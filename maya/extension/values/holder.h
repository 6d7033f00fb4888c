// The list that engine and scripts share: what a spacing reference is.
#pragma once

#include "host/value.h"
#include "maya/extension/python/python.h"

namespace vantorelix::maya {

// A list-like object that shows `list` and changes it.
Ref new_holder(const host::List& list);

}  // namespace vantorelix::maya
