#include "standalone/scene/curves/infinity.h"

#include <cmath>

namespace vantorelix::standalone {

Repetition repetition(double frame, double first, double last, Infinity infinity) {
  const bool before = frame < first;
  const double range = last - first;
  const double distance = before ? first - frame : frame - last;
  const double into = std::fmod(distance, range);
  const double number = std::floor((distance - into) / range + 0.5) + 1.0;
  // Entered at the end that is nearer to the keys, unless it runs backwards.
  const bool backwards = infinity == Infinity::oscillate && std::fmod(number, 2.0) != 0.0;
  return {before == backwards ? first + into : last - into, before ? -number : number};
}

}  // namespace vantorelix::standalone
