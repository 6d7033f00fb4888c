// One trail in a picture: its line in coloured runs, its dots, its shadow.
#pragma once

#include <functional>
#include <vector>

#include "base/text_sink.h"
#include "cli/output/svg/svg_camera.h"
#include "session/report.h"

namespace vantorelix::cli {

// What a trail's color_mode means.
enum ColorMode { kStandard = 0, kSpacing = 1, kFlow = 2, kBeats = 3 };

// What a line leaves out: points closer than `tolerance` pixels to the last one kept, and all but every `every`-th
// sample.
struct Thinning {
  double tolerance = 0.7;
  std::size_t every = 1;
};

// The whole frames that get a dot: those that `every` divides.
struct DotFrames {
  std::size_t every = 1;
};

struct Look {
  Vectors colors;    // one a sample
  int levels = 255;  // steps of a colour channel
  bool lit = true;   // in full strength, with its dots
};

// A trail as the picture sees it: no copy of its samples.
class DrawnTrail {
 public:
  using Project = std::function<Point2(const Vector&)>;  // from the scene's axes to pixels

  DrawnTrail(const session::TrailView& trail, Look look, Project project);

  const session::TrailView& trail() const { return trail_; }
  bool lit() const { return look_.lit; }
  Point2 place(const Vector& p) const { return project_(p); }

  // How many points the line keeps.
  std::size_t kept(const Thinning& thinning) const;

  // Calls visit(from, to) for each stretch of the line, in pixels.
  void for_each_stretch(const Thinning& thinning, const std::function<void(const Point2&, const Point2&)>& visit) const;

  void draw_casing(TextSink& out, const Thinning& thinning) const;
  void draw_line(TextSink& out, const Thinning& thinning) const;
  // Calls visit(sample) for each that lies on a whole frame of `frames`.
  void for_each_dot(const DotFrames& frames, const std::function<void(std::size_t)>& visit) const;
  void draw_dots(TextSink& out, const DotFrames& frames) const;
  // The colour at the sample nearest to a frame.
  Vector color_at(double frame) const;
  // The line as `project` has it, in the style of `kind`.
  void draw_outline(TextSink& out, const Thinning& thinning, const char* kind, const Project& project) const;

 private:
  // Calls visit(index of the last kept sample, index of this one, place, whether the line goes on from the last).
  template <class Visit>
  void for_each_kept(const Thinning& thinning, const Project& project, const Visit& visit) const;
  Vector segment_color(std::size_t from, std::size_t to) const;

  const session::TrailView& trail_;
  Look look_;
  Project project_;
};

}  // namespace vantorelix::cli
