// Three channels that a file gives together, in a form that no three curves have: quaternions, layers.
#pragma once

#include <array>
#include <vector>

namespace vantorelix::standalone {

class Track {
 public:
  virtual ~Track() = default;
  // The values at a frame: lengths, scales, or angles in radians for the rotate order of the node that it drives.
  // Always finite, and the same for the same frame.
  virtual std::array<double, 3> at(double frame) const = 0;
  // Frames of its keys as the file has them: ascending, without duplicates.
  virtual const std::vector<double>& key_times() const = 0;
  // Whether `at` gives different values at different frames.
  virtual bool moves() const = 0;
};

}  // namespace vantorelix::standalone
