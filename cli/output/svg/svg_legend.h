// The words around a picture: title above, meaning of the colours and measures of the trails below.
#pragma once

#include <string>
#include <vector>

#include "base/text_sink.h"
#include "cli/output/svg/svg_camera.h"
#include "session/report.h"

namespace vantorelix::cli {

void draw_title(TextSink& out, const session::TrailReport& report, double left, double top);

// Height that the legend needs.
double legend_height(const session::TrailReport& report, const std::vector<std::string>& notes);
// `notes` are remarks on how the picture was made.
void draw_legend(TextSink& out, const session::TrailReport& report, const std::vector<std::string>& notes,
                 const Box2& area);

}  // namespace vantorelix::cli
