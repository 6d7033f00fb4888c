// What gives the motion a scale: the ground under a perspective view, ruled paper behind a parallel one.
#pragma once

#include <array>
#include <string>

#include "base/text_sink.h"
#include "cli/output/svg/svg_camera.h"

namespace vantorelix::cli {

// A square grid on the ground, at height 0 where the motion is near it, else just below the motion.
struct Ground {
  double height = 0.0;
  double step = 1.0;
  double low_x = 0.0, high_x = 0.0, low_z = 0.0, high_z = 0.0;  // multiples of step

  std::array<Vector, 4> corners() const;
};
Ground ground_under(const Bounds& bounds);
void draw_ground(TextSink& out, const Ground& ground, const Camera& camera, const Placement& placement, char up_axis);

// Lines and numbers across the area; returns the step between them.
double draw_ruled_paper(TextSink& out, const Box2& area, const Camera& camera, const Placement& placement,
                        const Bounds& bounds, char up_axis);

}  // namespace vantorelix::cli
