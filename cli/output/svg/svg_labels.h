// Texts and markers that keep out of each other's way.
#pragma once

#include <string>
#include <vector>

#include "base/text_sink.h"
#include "cli/output/svg/svg_camera.h"
#include "cli/output/svg/svg_line.h"

namespace vantorelix::cli {

// The places of the picture that are taken, and those that are better left free because a line runs there.
class Occupancy {
 public:
  explicit Occupancy(const Box2& area);
  void note_line(const Point2& from, const Point2& to);
  bool crosses_line(const Box2& box) const;
  // Whether the box lies in the area and touches none that is taken.
  bool is_free(const Box2& box) const;
  void take(const Box2& box) { taken_.push_back(box); }

 private:
  std::size_t cell(double x, double y) const;

  Box2 area_;
  std::size_t columns_;
  std::vector<Box2> taken_;
  std::vector<bool> lines_;  // cells of a coarse raster over the area
};

// Finds a free place for a text beside a point, off the lines if there is one, and draws it there; false when there
// is none.
bool draw_label(TextSink& out, Occupancy& occupancy, const Point2& at, const std::string& text, const char* classes,
                double size);

// A key in the picture.
struct KeyMark {
  Point2 at;
  double time;
  Vector position;  // in the scene's axes
  std::string color;
};

// The keys of all trails that have room to be marked, the telling ones first: first and last of a trail, then round
// frame numbers. A trail with so many keys that they would hide it keeps the round ones only.
std::vector<KeyMark> choose_keys(const std::vector<DrawnTrail>& trails, Occupancy& occupancy);
void draw_keys(TextSink& out, const std::vector<KeyMark>& marks);
// Writes the frame numbers of the first marks that have room, `limit` of them at most. Returns how many it left out.
std::size_t label_keys(TextSink& out, const std::vector<KeyMark>& marks, Occupancy& occupancy, std::size_t limit);

// The name of each trail at its end, as far as there is room.
void label_trails(TextSink& out, const std::vector<DrawnTrail>& trails, Occupancy& occupancy);

}  // namespace vantorelix::cli
