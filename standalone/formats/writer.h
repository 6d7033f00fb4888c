// Edited animation out again, in the forms that it can be read from.
#pragma once

#include <string>
#include <vector>

#include "standalone/scene/scene.h"

namespace vantorelix::standalone {

struct Written {
  std::string text;
  // What of the objects' animation the text does not hold, or not to the last bit: a sentence each, without its end.
  std::vector<std::string> lost;
};

// The curves that drive channels of these transforms, as a Maya ASCII file to be imported into a scene that has them:
// each curve under its name, connected to the channel that it drives here. Key times, values, tangents, weights and
// what is before and after the keys are exact; but fixed tangents of lengths, in a scene of another unit than the
// centimetre, may be rounded in the last bit.
Written write_maya_curves(const Scene& scene, const std::vector<NodeId>& objects);

// The same as a Python script for Maya, which replaces the keys of these channels. It refuses to run in a scene of
// another frame rate.
Written write_maya_script(const Scene& scene, const std::vector<NodeId>& objects);

}  // namespace vantorelix::standalone
