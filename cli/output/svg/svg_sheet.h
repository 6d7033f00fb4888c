// A picture before it is drawn: where everything goes.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "cli/output/svg/svg.h"
#include "cli/output/svg/svg_camera.h"
#include "cli/output/svg/svg_figure.h"
#include "cli/output/svg/svg_grid.h"
#include "cli/output/svg/svg_labels.h"
#include "cli/output/svg/svg_legend.h"
#include "cli/output/svg/svg_line.h"
#include "cli/output/svg/svg_signs.h"
#include "session/motion.h"

namespace vantorelix::cli {

inline constexpr double kMargin = 44.0;
// Above this many trails shadows would hide more than they tell.
inline constexpr std::size_t kMaxShadows = 6;

// What the picture shows, whatever its size.
struct Subject {
  const session::TrailReport& report;
  const SvgOptions& options;
  session::Motion motion;
  std::vector<std::size_t> moving;  // the trails that it is fitted to
  std::vector<bool> lit;
  session::TrailReport second;          // the report's trails in the second scene, without samples where there is none
  std::optional<std::size_t> farthest;  // the trail that is farthest apart in the two scenes
  Fitted fitted;
  Bounds bounds;
  Camera camera;
  Ground ground;
};
Subject subject_of(const session::TrailReport& report, const SvgOptions& options);

// Room for the words below the plot.
struct Room {
  std::size_t rows = 8;      // of the table of measures
  std::size_t numbers = 90;  // of objects whose names have no room in the plot
  double legend = 0.0;       // pixels that a picture of a given height keeps for them
};

struct Sheet {
  Sheet(const Subject& subject, const Room& room);

  const Subject& subject;
  double width = 0.0, height = 0.0;
  Box2 plot;
  Lens lens;
  double ruled_step = 0.0;  // of the paper; 0 in perspective
  std::vector<DrawnTrail> trails;
  std::vector<std::size_t> beside;  // the trails whose lines in the second scene are drawn
  std::vector<DrawnTrail> second;   // these lines
  std::optional<Line> apart;        // the largest distance between the scenes
  Thinning thinning;
  DotFrames dots;
  Skins skins;
  std::vector<KeyMark> keys;
  Holds holds;
  std::vector<Arrow> arrows;
  Names names;
  std::vector<Label> labels;
  Legend legend;

  Figure figure() const { return {subject.report, subject.motion, lens}; }
  // As it is in the second scene.
  Figure second_figure() const { return {subject.second, subject.motion, lens}; }
  double foot() const { return plot.bottom + (subject.camera.is_perspective() ? 20.0 : 40.0); }

 private:
  void place(const Room& room);
  void add_trails();
  void add_second();
  void thin_lines();
  void thin_dots();
  void mark(const Room& room);
  void explain();
};

}  // namespace vantorelix::cli
