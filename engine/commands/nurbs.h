// Baking trails into curves that need neither engine nor plug-in.
#pragma once

#include "host/value.h"

namespace vantorelix {

// One curve of the given degree per registered trail whose node or source is selected (per registered trail when
// nothing is selected). Trails that cannot become a curve are skipped.
void convert_to_nurbs(const host::Value& degree = 3);

}  // namespace vantorelix
