// The picture of trails.
#pragma once

#include <optional>
#include <string>

#include "base/text_sink.h"
#include "cli/output/svg/svg_colors.h"
#include "cli/output/svg/svg_figure.h"
#include "session/report.h"

namespace vantorelix::cli {

struct PictureSize {
  int width, height;  // pixels
};

struct SvgOptions {
  std::string view = "persp";  // persp, front, side, top
  std::string theme = "auto";  // auto, light, dark
  Coloring coloring = {};
  std::optional<Onion> onion = {};
  std::optional<PictureSize> size = {};  // none: as wide as usual, as high as the motion needs
  std::string title = {};                // empty: the file's name
};

// The motion fills the picture; what matters of it is lit, the rest faint. Huge trails are thinned to what can be seen.
// Returns the picture's size. Throws Failure when the size that was asked for has no room for the motion above its
// legend.
PictureSize write_svg(TextSink& out, const session::TrailReport& report, const SvgOptions& options);

}  // namespace vantorelix::cli
