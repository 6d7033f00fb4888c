#include "cli/output/svg/svg_signs.h"

#include <algorithm>
#include <cmath>

#include "base/mathematics/mathematics.h"
#include "base/number_text.h"
#include "cli/output/svg/svg_path.h"
#include "session/motion.h"

namespace vantorelix::cli {

namespace {

// In pixels along the line.
constexpr double kBetweenArrows = 130.0;
constexpr double kArrow = 5.0;
constexpr std::size_t kMaxArrows = 200, kMaxHolds = 100;
constexpr double kHoldRadius = 8.0;

void add_arrows(const DrawnTrail& trail, const Thinning& thinning, Occupancy& occupancy, std::vector<Arrow>& arrows) {
  double done = 0.0, next = kBetweenArrows / 2.0;
  trail.for_each_stretch(thinning, [&](const Point2& from, const Point2& to) {
    const double length = base::hypot(to.x - from.x, to.y - from.y);
    done += length;
    if (!(done >= next) || !(length > 0.0) || arrows.size() == kMaxArrows) return;
    const Point2 middle{(from.x + to.x) / 2.0, (from.y + to.y) / 2.0};
    const Box2 box = box_around(middle, kArrow + 1.0);
    if (!occupancy.is_free(box)) return;  // the next stretch may have room
    occupancy.take(box);
    arrows.push_back({middle, {(to.x - from.x) / length, (to.y - from.y) / length}});
    next = done + kBetweenArrows;
  });
}

}  // namespace

std::vector<Arrow> choose_arrows(const std::vector<DrawnTrail>& trails, const Thinning& thinning,
                                 Occupancy& occupancy) {
  // A direction over less than this would follow the rounding of places rather than the motion.
  Thinning coarse = thinning;
  coarse.tolerance = std::max(thinning.tolerance, 4.0);
  std::vector<Arrow> arrows;
  for (const DrawnTrail& trail : trails)
    if (trail.lit() && trail.trail().show_line) add_arrows(trail, coarse, occupancy, arrows);
  return arrows;
}

void draw_arrows(TextSink& out, const std::vector<Arrow>& arrows) {
  if (arrows.empty()) return;
  PathData path;
  for (const auto& [at, along] : arrows) {
    const auto place = [&, &at = at, &along = along](double forward, double aside) {
      return Point2{at.x + kArrow * (forward * along.x - aside * along.y),
                    at.y + kArrow * (forward * along.y + aside * along.x)};
    };
    path.move(place(1.2, 0.0));
    path.line(place(-0.8, 0.9));
    path.line(place(-0.4, 0.0));
    path.line(place(-0.8, -0.9));
    path.line(place(1.2, 0.0));
  }
  out << "<path class=\"arrow\" d=\"" << path.text() << "\"/>\n";
}

Holds choose_holds(const std::vector<DrawnTrail>& trails, const Box2& area) {
  Holds holds;
  Occupancy taken(area);
  for (const DrawnTrail& trail : trails) {
    if (!trail.lit()) continue;
    const session::Path path = session::path_of(trail.trail(), 1.0);  // holds are in frames, whatever the rate
    for (const session::Hold& hold : session::holds_of(path)) {
      ++holds.all;
      const Vector place = session::place_at(trail.trail(), (hold.first + hold.last) / 2.0);
      if (!is_finite(place) || holds.marks.size() == kMaxHolds) continue;
      const Point2 at = trail.place(place);
      const Box2 box = box_around(at, kHoldRadius);
      if (!taken.is_free(box)) continue;
      taken.take(box);
      holds.marks.push_back({at, hold.first, hold.last});
    }
  }
  return holds;
}

void draw_holds(TextSink& out, const std::vector<HoldMark>& marks) {
  for (const HoldMark& mark : marks)
    out << "<rect class=\"hold\" x=\"" << pixel(mark.at.x - kHoldRadius) << "\" y=\"" << pixel(mark.at.y - kHoldRadius)
        << "\" width=\"" << pixel(2.0 * kHoldRadius) << "\" height=\"" << pixel(2.0 * kHoldRadius) << "\" rx=\"3\"/>\n";
}

std::vector<Label> label_holds(const std::vector<HoldMark>& marks, Occupancy& occupancy) {
  std::vector<Label> labels;
  for (const HoldMark& mark : marks) {
    const std::string text = "holds " + readable(mark.first, 7) + "\u2013" + readable(mark.last, 7);
    if (auto label = place_label(occupancy, mark.at, text, {"soft key", 10.5, 9.0}))
      labels.push_back(std::move(*label));
  }
  return labels;
}

}  // namespace vantorelix::cli
