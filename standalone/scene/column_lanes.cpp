#include "standalone/scene/column_loops.h"

#include "host/widths.h"

namespace vantorelix::standalone {

namespace lanes {
extern const ColumnLoops base, avx2, avx512;
}

namespace {

const host::Widths<ColumnLoops>& widths() {
#ifdef VANTORELIX_WIDE_LANES
  static const host::Widths kWidths(lanes::base, lanes::avx2, lanes::avx512);
#else
  static const host::Widths kWidths(lanes::base);
#endif
  return kWidths;
}

}  // namespace

const std::vector<const ColumnLoops*>& column_loops_here() { return widths().here; }

const std::vector<const char*>& column_loops_elsewhere() { return widths().elsewhere; }

}  // namespace vantorelix::standalone
