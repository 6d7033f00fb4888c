#include "cli/args/picture.h"

#include <cmath>

#include "cli/args/options.h"

namespace vantorelix::cli {

namespace {

std::optional<int> side(const std::string& text, int least) {
  const auto number = parse_number(text);
  const bool fits = number && *number == std::floor(*number) && *number >= least && *number <= 10'000;
  return fits ? std::optional(static_cast<int>(*number)) : std::nullopt;
}

}  // namespace

std::optional<Onion> parse_onion(const std::string& text) {
  if (text == "keys") return Onion{};
  if (!text.starts_with("every:")) return std::nullopt;
  const auto every = parse_number(std::string_view(text).substr(6));
  return every && *every > 0.0 ? std::optional(Onion{*every}) : std::nullopt;
}

std::optional<PictureSize> parse_size(const std::string& text) {
  const std::size_t cross = text.find('x');
  if (cross == std::string::npos) return std::nullopt;
  const auto width = side(text.substr(0, cross), 480), height = side(text.substr(cross + 1), 360);
  return width && height ? std::optional(PictureSize{*width, *height}) : std::nullopt;
}

SvgOptions PictureOptions::svg() const {
  return {view,
          theme,
          {color_by == "object", palette == "safe"},
          onion.empty() ? std::nullopt : parse_onion(onion),
          size.empty() ? std::nullopt : parse_size(size),
          title};
}

void add_picture_options(CLI::App& command, PictureOptions& options) {
  add_choice(command, "--view", options.view, {"persp", "front", "side", "top"}, "How a picture looks at the scene");
  add_choice(command, "--theme", options.theme, {"auto", "light", "dark"},
             "Background of a picture; auto follows the reader's setting, a .png is light then");
  add_choice(command, "--color-by", options.color_by, {"mode", "object"},
             "Colours of a picture: by the colour mode, or each object its own");
  add_choice(command, "--palette", options.palette, {"engine", "safe"},
             "Colours of a picture: the engine's own, or such as every kind of colour vision tells apart");
  add_checked(command, "--onion", options.onion, "every:N|keys",
              "Show the objects in a picture at frames before and after the current one too",
              "a choice of frames; write every:N, as every:5, or keys",
              [](const std::string& text) { return parse_onion(text).has_value(); });
  add_checked(command, "--size", options.size, "WIDTHxHEIGHT", "Size of a picture in pixels (default: 1200 wide)",
              "a valid size; write WIDTHxHEIGHT, as 1920x1080, from 480x360 to 10000x10000",
              [](const std::string& text) { return parse_size(text).has_value(); });
  command.add_option("--title", options.title, "Title of a picture (default: the file's name)")->type_name("TEXT");
}

}  // namespace vantorelix::cli
