// Texts and markers that keep out of each other's way.
#pragma once

#include <optional>
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
  const Box2& area() const { return area_; }

 private:
  std::size_t cell(double x, double y) const;

  Box2 area_;
  std::size_t columns_;
  std::vector<Box2> taken_;
  std::vector<bool> lines_;  // cells of a coarse raster over the area
};

Box2 box_around(const Point2& p, double radius);

// The text, or its end where it is longer than so many characters: the end is what tells most.
std::string shortened(const std::string& text, std::size_t most);

struct Line {
  Point2 from, to;
};

// A text that has found its place.
struct Label {
  Point2 at;  // where its first letter stands
  std::string text;
  const char* classes;
  std::optional<Line> leader = {};  // from what it names, where it stands away from that
};

struct Lettering {
  const char* classes;
  double size;
  double gap = 7.0;    // from the point that it names
  double apart = 0.0;  // from what stands on its left and right
};

// Finds a free place for a text beside a point, off the lines if there is one, and takes it.
std::optional<Label> place_label(Occupancy& occupancy, const Point2& at, const std::string& text, const Lettering& how);
void draw_labels(TextSink& out, const std::vector<Label>& labels);

// A key in the picture.
struct KeyMark {
  Point2 at;
  double time;
  Vector position;  // in the scene's axes
  std::string color;
};

// The keys that have room to be marked, the telling ones first: first and last of a trail, then round frame numbers.
// A trail with so many keys that they would hide it keeps the round ones only; among many trails one that is not lit
// has none.
std::vector<KeyMark> choose_keys(const std::vector<DrawnTrail>& trails, Occupancy& occupancy);
void draw_keys(TextSink& out, const std::vector<KeyMark>& marks);
// The frame numbers of the first marks that have room, `limit` of them at most.
std::vector<Label> label_keys(const std::vector<KeyMark>& marks, Occupancy& occupancy, std::size_t limit);

// An object whose name is to stand beside it.
struct Named {
  std::size_t trail;  // its place in the report
  Point2 at;
  bool lit;
};

struct Names {
  std::vector<Label> labels;
  std::vector<std::size_t> numbered;  // the trails that have a number instead, from 1 on
  std::size_t left_out = 0;
};

// What the trails are called: the name of each, and as much of its path as tells it apart from others.
std::vector<std::string> names_of(const session::TrailReport& report);
// Names for as many as have room, in this order; for those without, numbers, `limit` of them at most. An object that
// stands so close to one with a name or number that nobody could tell which of them is meant has no number.
Names place_names(const std::vector<Named>& objects, const std::vector<std::string>& names, Occupancy& occupancy,
                  std::size_t limit);

}  // namespace vantorelix::cli
