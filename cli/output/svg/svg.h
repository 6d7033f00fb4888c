// The picture of trails.
#pragma once

#include <string>

#include "base/text_sink.h"
#include "session/report.h"

namespace vantorelix::cli {

struct SvgOptions {
  std::string view = "persp";  // persp, front, side, top
  std::string theme = "auto";  // auto, light, dark
};

// Colours are those of the trail's colour mode, modes 0, 2 and 3 made by the engine's generators for the initialised
// host. Huge trails are thinned to what can be seen.
void write_svg(TextSink& out, const session::TrailReport& report, const SvgOptions& options);

}  // namespace vantorelix::cli
