// The curves that drive channels of objects, as Maya is told of them. For the files of this folder only.
#pragma once

#include <string>
#include <vector>

#include "standalone/scene/scene.h"

namespace vantorelix::standalone {

struct ChannelCurve {
  std::string plug;  // "ball.translateX"
  NodeId curve;
};

// In the order of the objects and of their connections. What else drives their channels goes to `lost`.
std::vector<ChannelCurve> channel_curves(const Scene& scene, const std::vector<NodeId>& objects,
                                         std::vector<std::string>& lost);

// What the scene's numbers are in.
struct WrittenUnits {
  std::string length;  // "cm"
  double centimetres;  // in one of that
  std::string time;    // "film"
};
// A scene that does not tell its unit is written in centimetres, which `lost` hears of.
WrittenUnits written_units(const Scene& scene, std::vector<std::string>& lost);

// The y of a fixed tangent as Maya keeps it, in centimetres where it is a length, so that it is read back to the same
// bits. In a scene of another unit there is not always such a number: `lost` hears of that.
double written_tangent(const AnimCurve& curve, double y, const WrittenUnits& units, const std::string& plug,
                       std::vector<std::string>& lost);

}  // namespace vantorelix::standalone
