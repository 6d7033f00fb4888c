// Scenes that another tool has evaluated: a world matrix for each object at each frame.
//
// Every object becomes a transform below its parent that does not inherit from it, so that its world matrix is its own:
// its position at a frame is the given one, bit for bit, whatever the matrices above it hold. Its channels are linear
// curves with a key on each frame; one that stays as it is has no curve. An object is animated when one of its own
// matrices differs from its first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "standalone/formats/reader.h"

namespace vantorelix::standalone {

struct SampledObjects {
  std::vector<std::string> names;
  std::vector<std::int64_t> parents;  // of each object the number of one before it, or -1
  std::size_t frames = 0;
  double first = 0.0;  // the first frame; the others follow one by one
  double frames_per_second = 24.0;
  std::string unit = "unknown";
  char up_axis = 'y';
};

// `matrices`: of each frame, of each object 16 doubles, little-endian, row by row, row vectors. Throws FormatError,
// with `name` and `line`.
Scene sampled_scene(const SampledObjects& objects, std::string_view matrices, const std::string& name,
                    std::size_t line = 0, const ReadOptions& options = {});

}  // namespace vantorelix::standalone
