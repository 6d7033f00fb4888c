// What stands still around the trails.
#pragma once

#include <cstddef>
#include <vector>

#include "session/report.h"
#include "standalone/scene/scene.h"

namespace vantorelix::session {

inline constexpr std::size_t kMaxStatics = 2000;

// The transforms that do not move and have a surface (a mesh, a NURBS or subdivision surface), in the scene's order,
// where they are at a frame. A surface that a skin or another deformer moves does not stand still. The box is the one
// that the file's reader found (standalone::kBounds), else a cube of one unit. Of more than kMaxStatics the largest.
std::vector<StaticBox> static_boxes(const standalone::Scene& scene, double frame);

}  // namespace vantorelix::session
