// What moves among trails, how far, and what matters most of it: what a picture shows first. The page decides by the
// same rules (viewer/src/model: reach, hierarchy, first_look).
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "base/vector.h"
#include "session/report.h"

namespace vantorelix::session {

// The box around a trail's finite samples, whose `low` is above its `high` where there are none, and how long its line
// is. `extent` is the longest side of the box.
struct Reach {
  Vector low, high;
  double extent = 0.0;
  double length = 0.0;
};

// Whether there is more to see between the corners of a box than the rounding of coordinates.
bool has_extent(const Vector& low, const Vector& high);

struct Motion {
  std::vector<Reach> reaches;  // by trail, as all of these
  std::vector<bool> moves;     // not what trembles by less than 1e-4 of the extent of all that moves
  std::vector<std::optional<std::size_t>> parents;

  // The trails that move; all of them when none does.
  std::vector<std::size_t> that_move() const;
};
Motion motion_of(const TrailReport& report);

// Where the object is at a frame: linear between samples, held before the first and after the last. Not finite beside
// samples that are not, and where there are none.
Vector place_at(const TrailView& trail, double frame);

// The ends that travel most: of the trails that move, those below which nothing moves; of each limb one. In the order
// of the trails; at most kMostChosen. The first trail where nothing moves.
inline constexpr std::size_t kMostChosen = 5;
std::vector<std::size_t> first_choice(const TrailReport& report, const Motion& motion);

}  // namespace vantorelix::session
