// Rotations as glTF animates them: quaternions between keys.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "standalone/scene/quaternion.h"
#include "standalone/scene/track.h"

namespace vantorelix::standalone {

enum class GltfInterpolation { step, linear, cubic_spline };

// Angles for the rotate order xyz. Before its first and after its last key it holds their rotations.
class GltfRotation : public Track {
 public:
  struct Key {
    Quaternion value = {0, 0, 0, 1};  // not of length 0
    // Of a spline: components a second.
    Quaternion in = {};
    Quaternion out = {};
  };

  // `times` in frames, strictly ascending, one for each key, at least one.
  GltfRotation(std::vector<double> times, std::vector<Key> keys, GltfInterpolation interpolation,
               double frames_per_second);

  std::array<double, 3> at(double frame) const override;
  const std::vector<double>& key_times() const override { return times_; }
  bool moves() const override { return moves_; }

 private:
  Quaternion between(std::size_t key, double frame) const;
  bool find_motion() const;

  std::vector<double> times_;
  std::vector<Key> keys_;
  GltfInterpolation interpolation_;
  double frames_per_second_;
  bool moves_;
};

}  // namespace vantorelix::standalone
