// Rotations as glTF animates them: quaternions between keys.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "standalone/scene/curves/track.h"
#include "standalone/scene/transforms/quaternion.h"

namespace vantorelix::standalone {

enum class GltfInterpolation { step, linear, cubic_spline };

// Angles for the rotate order xyz. Before its first and after its last key it holds their rotations.
class GltfRotation : public Track {
 public:
  // Of a spline's key: components a second.
  struct Tangents {
    Quaternion in, out;
  };
  struct Keys {
    std::vector<double> times;       // frames, strictly ascending; at least one
    std::vector<Quaternion> values;  // not of length 0
    std::vector<Tangents> tangents;  // of a spline, else empty
  };

  GltfRotation(Keys keys, GltfInterpolation interpolation, double frames_per_second);

  std::array<double, 3> at(double frame) const override;
  const std::vector<double>& key_times() const override { return keys_.times; }
  bool moves() const override;

 private:
  Quaternion between(std::size_t key, double frame) const;
  // The value of a key: as given for a spline, else normalised.
  Quaternion value(std::size_t key) const;

  Keys keys_;
  GltfInterpolation interpolation_;
  double frames_per_second_;
};

}  // namespace vantorelix::standalone
