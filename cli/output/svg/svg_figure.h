// Where the objects are at a frame: bones, rings, and the same figure at frames around it.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/text_sink.h"
#include "cli/output/svg/svg_camera.h"
#include "cli/output/svg/svg_line.h"
#include "session/motion.h"

namespace vantorelix::cli {

// Which frames have an onion skin beside the drawn one: every so many, or those of keys.
struct Onion {
  double every = 0.0;  // 0: keys
};

// An onion skin.
struct Skin {
  double frame;
  double strength;  // of 0..1, less the farther it is from the drawn frame
};

struct Skins {
  std::vector<Skin> skins;   // from the farthest to the nearest
  std::size_t left_out = 0;  // frames that are farther away than the most that are drawn
};
Skins choose_skins(const session::TrailReport& report, const Onion& onion);

// Draws figures of a report's objects.
class Figure {
 public:
  Figure(const session::TrailReport& report, const session::Motion& motion, const Lens& lens);

  // Where a trail's object is at a frame; none where that is not finite.
  std::optional<Point2> spot(std::size_t trail, double frame) const;
  // Calls visit(from, to) for the line from each object to its nearest ancestor with a trail.
  void for_each_bone(double frame, const std::function<void(const Point2&, const Point2&)>& visit) const;

  void draw_skins(TextSink& out, const std::vector<Skin>& skins) const;
  void draw_bones(TextSink& out) const;
  // A ring at each object's place, in its colour; those of the lit trails large.
  void draw_rings(TextSink& out, const std::vector<DrawnTrail>& trails, const Box2& area) const;

 private:
  const session::TrailReport& report_;
  const session::Motion& motion_;
  const Lens& lens_;
  std::vector<std::size_t> loners_;  // what moves and has no bone
};

// Pixels from an object's place to the edge of its ring.
double ring_radius(bool lit, bool moves);

}  // namespace vantorelix::cli
