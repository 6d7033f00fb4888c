// One trail in a picture: its line in coloured runs, its dots, its shadow.
#pragma once

#include <functional>
#include <vector>

#include "base/text_sink.h"
#include "cli/output/svg/svg_camera.h"
#include "session/report.h"

namespace vantorelix::cli {

// What a line leaves out: points closer than `tolerance` pixels to the last one kept, and all but every `every`-th
// sample.
struct Thinning {
  double tolerance = 0.7;
  std::size_t every = 1;
};

// A trail as the picture sees it: no copy of its samples.
class DrawnTrail {
 public:
  using Project = std::function<Point2(const Vector&)>;  // from the scene's axes to pixels

  // `colors`: one a sample, by the trail's colour mode.
  DrawnTrail(const session::TrailView& trail, Vectors colors, Project project);

  const session::TrailView& trail() const { return trail_; }
  Point2 place(const Vector& p) const { return project_(p); }

  // How long the line is in the picture, in pixels.
  double screen_length() const;
  // How many points the line keeps.
  std::size_t kept(const Thinning& thinning) const;

  // Calls visit(from, to) for each stretch of the line, in pixels.
  void for_each_stretch(const Thinning& thinning, const std::function<void(const Point2&, const Point2&)>& visit) const;

  void draw_casing(TextSink& out, const Thinning& thinning) const;
  void draw_line(TextSink& out, const Thinning& thinning) const;
  // Every `stride`-th sample.
  void draw_dots(TextSink& out, std::size_t stride) const;
  // The line as `project` has it, in the style of `kind`.
  void draw_outline(TextSink& out, const Thinning& thinning, const char* kind, const Project& project) const;

 private:
  // Calls visit(index of the last kept sample, index of this one, place, whether the line goes on from the last).
  template <class Visit>
  void for_each_kept(const Thinning& thinning, const Project& project, const Visit& visit) const;
  Vector segment_color(std::size_t from, std::size_t to) const;

  const session::TrailView& trail_;
  Vectors colors_;
  Project project_;
};

// The colours that a trail's mode shows: the node's own for spacing, the engine's generators for the rest.
Vectors mode_colors(const session::TrailView& trail);

}  // namespace vantorelix::cli
