#include "session/editing/obstacle.h"

namespace vantorelix::session {

const char* word_of(Obstacle obstacle) {
  switch (obstacle) {
    case Obstacle::no_key:
      return "no_key";
    case Obstacle::rotations_only:
      return "rotations_only";
    case Obstacle::locked:
      return "locked";
    case Obstacle::not_a_curve:
      return "not_a_curve";
    case Obstacle::recorded:
      return "recorded";
    case Obstacle::flat_parent:
      return "flat_parent";
    case Obstacle::not_finite:
      return "not_finite";
    case Obstacle::repeats:
      return "repeats";
    case Obstacle::depends:
      return "depends";
    case Obstacle::at_key:
      return "at_key";
    case Obstacle::still:
      return "still";
    case Obstacle::beyond_keys:
      return "beyond_keys";
    case Obstacle::steps:
      return "steps";
    case Obstacle::weights_differ:
      return "weights_differ";
  }
  return "";
}

}  // namespace vantorelix::session
