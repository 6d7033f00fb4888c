// Edited animation out again, in the forms that it can be read from.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "standalone/scene/curves/key_tangents.h"
#include "standalone/scene/scene.h"

namespace vantorelix::standalone {

struct Written {
  std::string bytes;
  // What of the objects' animation the bytes do not hold, or not to the last bit: a sentence each, without its end.
  std::vector<std::string> lost;
};

// A form that cannot hold what is asked for at all. what() is one sentence without its end.
struct CannotWrite : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The curves that drive channels of these transforms, as a Maya ASCII file to be imported into a scene that has them:
// each curve under its name, connected to the channel that it drives here. Key times, values, tangents, weights and
// what is before and after the keys are exact; but fixed tangents of lengths, in a scene of another unit than the
// centimetre, may be rounded in the last bit.
Written write_maya_curves(const Scene& scene, const std::vector<NodeId>& objects);

// The same as a Python script for Maya, which replaces the keys of these channels. It refuses to run in a scene of
// another frame rate.
Written write_maya_script(const Scene& scene, const std::vector<NodeId>& objects);

// The figures that these transforms are joints of, all of them from the topmost joint down, as a BVH clip with a row
// for each whole frame of the range. What was read from a clip keeps its hierarchy, offsets, and order of channels; and
// the channels of joints that have nothing but a translation and a rotation, up to the world, have the same bits at
// whole frames when they are read back, but for angles that no number of degrees gives. Other joints, as those with
// scale, orientations, pivots or parents that are no joints, are worked out from where they are. Throws CannotWrite
// where there is no joint, no whole frame in the range, or more than 2^25 numbers to write.
Written write_bvh(const Scene& scene, const std::vector<NodeId>& objects, const FrameRange& range);

// The glTF file that the scene was opened from, and that lies there still, as a .glb: with the animation of these
// transforms as it is now, in 32 bits, in the clip that the scene shows. All else in it keeps its bytes: new keys lie
// behind the file's own, which stay. Curves become splines of the same shape, lines, or steps; but weighted ones, ones
// that repeat, and angles are straight from frame to frame. Throws CannotWrite for a scene that is not of a glTF file,
// and FormatError where the file cannot be read any more.
Written write_gltf(const Scene& scene, const std::vector<NodeId>& objects, const std::filesystem::path& file);

}  // namespace vantorelix::standalone
