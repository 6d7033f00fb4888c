#include "standalone/scene/column_loops.h"

namespace vantorelix::standalone {

namespace lanes {
extern const ColumnLoops base, avx2, avx512;
}

namespace {

// Both lists at once.
struct Choice {
  std::vector<const ColumnLoops*> here = {&lanes::base};
  std::vector<const char*> elsewhere;
#ifdef VANTORELIX_WIDE_LANES
  Choice() {
    // These ask the operating system, too, whether it keeps the registers.
    __builtin_cpu_init();
    add(lanes::avx2, __builtin_cpu_supports("avx2") != 0);
    add(lanes::avx512, __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512dq") != 0 &&
                           __builtin_cpu_supports("avx512vl") != 0);
  }
  void add(const ColumnLoops& loops, bool runs) { runs ? here.push_back(&loops) : elsewhere.push_back(loops.name); }
#endif
};

const Choice& choice() {
  static const Choice kChoice;
  return kChoice;
}

}  // namespace

const std::vector<const ColumnLoops*>& column_loops_here() { return choice().here; }

std::vector<const char*> column_loops_elsewhere() { return choice().elsewhere; }

}  // namespace vantorelix::standalone
