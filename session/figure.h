// Which objects are one figure, how large it is, and where it stands.
#pragma once

#include <vector>

#include "session/measures/contacts.h"
#include "standalone/scene/scene.h"

namespace vantorelix::session {

// The figure of each object: its topmost ancestor that is animated, and every transform below that. Its height is the
// longest side of the box around these at the frame where that is longest, of nine from end to end of the playback
// range, so that it need not stand; its floor the lowest of them. Not a number for an object that is a figure by
// itself, or one all of whose parts are in one place.
std::vector<Figure> figures_of(const standalone::Scene& scene, const std::vector<standalone::NodeId>& objects);

}  // namespace vantorelix::session
