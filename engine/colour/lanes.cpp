#include "engine/colour/lanes.h"

#include "host/widths.h"

namespace vantorelix {

namespace lanes {
extern const Lanes base, avx2, avx512;
}

namespace {

const host::Widths<Lanes>& widths() {
#ifdef VANTORELIX_WIDE_LANES
  static const host::Widths kWidths(lanes::base, lanes::avx2, lanes::avx512);
#else
  static const host::Widths kWidths(lanes::base);
#endif
  return kWidths;
}

}  // namespace

const std::vector<const Lanes*>& lanes_here() { return widths().here; }

const std::vector<const char*>& lanes_elsewhere() { return widths().elsewhere; }

}  // namespace vantorelix
