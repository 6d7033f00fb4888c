// A key more on a curve that stays as it is.
#pragma once

#include <vector>

#include "standalone/scene/curves/anim_curve.h"

namespace vantorelix::standalone {

// The curve's keys with one at this frame, where its value was before, so that the curve keeps its shape, but for
// rounding. The new key has fixed tangents, or goes on with the steps or lines around it; the sides of its neighbours
// that automatic tangents would turn are fixed as they are. The same keys where there is one at this frame already.
// Throws host::Error of kind value where no such key can be added: beyond the ends of a curve that repeats there, which
// would change what is repeated.
std::vector<Key> with_key_inserted(const AnimCurve& curve, double frame);

}  // namespace vantorelix::standalone
