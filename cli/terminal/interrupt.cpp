#include "cli/terminal/interrupt.h"

namespace vantorelix::cli {

void check_interrupt() {
  if (interrupted()) throw host::Interrupt();
}

}  // namespace vantorelix::cli
