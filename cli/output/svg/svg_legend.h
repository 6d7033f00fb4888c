// The words around a picture: title above, meaning of the colours and signs and measures of the trails below.
#pragma once

#include <string>
#include <vector>

#include "base/text_sink.h"
#include "cli/output/svg/svg_camera.h"
#include "cli/output/svg/svg_colors.h"
#include "session/report.h"

namespace vantorelix::cli {

// Marks in a picture that the legend explains.
enum class Sign { place, key, arrow, hold, before, after, faint, second };

struct Legend {
  const session::TrailReport& report;
  Coloring coloring;
  std::vector<std::size_t> order;  // of the trails: those that matter first
  std::vector<std::string> names;  // by trail
  std::vector<Sign> signs;
  std::vector<std::string> notes;     // remarks on how the picture was made
  std::vector<std::size_t> numbered;  // the trails whose objects have a number in the picture, from 1 on
  std::size_t rows = 0;               // of the table of measures, at most
};

// What to call the second scene: its take where it is the same file. Empty where there is none.
std::string second_name(const session::TrailReport& report);

void draw_title(TextSink& out, const session::TrailReport& report, const std::string& title, double left, double top);

// Height that the legend needs in this width.
double legend_height(const Legend& legend, double width);
void draw_legend(TextSink& out, const Legend& legend, const Box2& area);

}  // namespace vantorelix::cli
