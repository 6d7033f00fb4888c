// The options of `trails` for pictures.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

#include "cli/output/svg/svg.h"

namespace vantorelix::cli {

struct PictureOptions {
  std::string view = "persp", theme = "auto", color_by = "mode", palette = "engine";
  std::string onion, size, title;

  SvgOptions svg() const;
};
void add_picture_options(CLI::App& command, PictureOptions& options);

// "keys" or "every:N" with N above 0; nothing for anything else.
std::optional<Onion> parse_onion(const std::string& text);
// "1920x1080", from 480x360 to 10000x10000; nothing for anything else.
std::optional<PictureSize> parse_size(const std::string& text);

}  // namespace vantorelix::cli
