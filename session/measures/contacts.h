// Where a foot is on the floor, and whether it slides there.
#pragma once

#include <vector>

#include "session/measures/path.h"

namespace vantorelix::session {

// The figure that an object belongs to; not a number where there is none.
struct Figure {
  double height = kUnknown;  // how large it is, standing or not
  double floor = kUnknown;   // where its lowest point is, along the up axis
};

// Near the floor is what is at most `near` above it; sliding, what is faster along it than `fast` a second.
struct ContactLimits {
  double near;
  double fast;
};
// Parts of the figure's height: 5 cm and 50 cm a second of somebody 170 cm tall.
inline constexpr ContactLimits kPartsOfFigure{0.03, 0.3};
// In centimetres, whatever the figure: as foot skating is counted in papers on generated motion.
inline constexpr ContactLimits kCentimetres{5.0, 50.0};

// One stretch of samples near the floor.
struct Contact {
  double first, last;     // frames
  double slide_distance;  // along the floor, over the steps that slide
};

struct Contacts {
  double floor = kUnknown;  // of this path, along the up axis
  double share = kUnknown;  // of the steps that are known, those in contact
  double slide_share = kUnknown;
  double slide_distance = kUnknown;
  std::vector<Contact> spans;
};

// An object's own floor is the height that a twentieth of its samples are below: an ankle is never as low as a toe. A
// step, from a sample to the next, is in contact when both ends are near that floor, and slides when it is then also
// faster than the limit. The slide share is
//
//   steps in contact that slide / steps in contact
//
// and not known without contact. Nothing is known where the figure is not, where no step is, and for objects that never
// come down: whose own floor is more than kComesDown of the figure's height above the figure's.
//
// `limits` are in the path's unit, or not a number where they are not known: then nothing is. `up_axis`: 'y' or 'z'.
inline constexpr double kComesDown = 0.1;
Contacts contacts_of(const Path& path, char up_axis, const Figure& figure, const ContactLimits& limits);

}  // namespace vantorelix::session
