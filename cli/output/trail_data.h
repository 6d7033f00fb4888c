// The numbers of trails in little room: what the page of trails unpacks again.
//
// Sections follow each other, each at a multiple of 8 bytes:
//   positions      3 whole numbers of 32 bits a sample: steps from the low end of the trail's box, or kNoPosition
//   key positions  the same a key, of the trails whose keys are not on their samples
//   key times      a float a key, or a double where one would lose something
//   colours        3 bytes a sample, 255 for 1
//   compared       the positions of the same objects in another scene, where there are any: of each trail that has
//   some,
//                  as many as its own, packed likewise in a box of their own
// Key colours are white and not stored.
#pragma once

#include <cstdint>
#include <limits>
#include <vector>

#include "cli/output/base64.h"
#include "session/report.h"

namespace vantorelix::cli {

// In all three coordinates of a position of which one is not finite.
inline constexpr std::uint32_t kNoPosition = std::numeric_limits<std::uint32_t>::max();

// Where the whole numbers of a trail's positions lie: low + q * step, q at most kNoPosition - 1. A step is 0 where the
// box is flat. Off by half a step at most.
struct PositionScale {
  Vector low, step;
};

struct TrailLayout {
  PositionScale scale;
  std::size_t keys = 0;
  // Every key is at a sample's frame, and where that sample is.
  bool keys_on_samples = true;
  PositionScale compared = {};
};

struct DataLayout {
  std::vector<TrailLayout> trails;
  std::uint64_t positions = 0, key_positions = 0, key_times = 0, colors = 0, compared = 0;  // bytes from the start
  std::uint64_t bytes = 0;                                                                  // of all sections
  bool double_times = false;
};

DataLayout lay_out(const session::TrailReport& report);
// Writes the sections of `layout`, which is that of the report.
void write_data(Base64& out, const session::TrailReport& report, const DataLayout& layout);

}  // namespace vantorelix::cli
