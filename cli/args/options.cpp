#include "cli/args/options.h"
#include "base/number_text.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <set>
#include <system_error>

#include "cli/output/output_file.h"
#include "cli/output/text.h"
#include "cli/terminal/failure.h"

namespace vantorelix::cli {

namespace fs = std::filesystem;

namespace {

bool same_file(const std::string& a, const std::string& b) {
  if (fs::path(a).lexically_normal() == fs::path(b).lexically_normal()) return true;
  std::error_code ignored;
  return fs::equivalent(a, b, ignored);
}

}  // namespace

std::optional<double> parse_number(std::string_view text) {
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  double value = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) return std::nullopt;
  return value;
}

ColorUse CommonOptions::color_use() const {
  return color == "always" ? ColorUse::always : color == "never" ? ColorUse::never : ColorUse::automatic;
}

void add_common_options(CLI::App& command, CommonOptions& options) {
  command.add_flag("-q,--quiet", options.quiet, "Print errors only");
  command.add_flag("--strict", options.strict, "End with exit code 3 when there were warnings");
  add_choice(command, "--color", options.color, {"auto", "always", "never"},
             "Colour in texts; auto: on a terminal, unless NO_COLOR is set");
  add_choice(command, "--log-format", options.log_format, {"text", "json"},
             "Errors and warnings as text, or as JSON lines");
}

void SceneOptions::check_format(standalone::Format found) const {
  const bool fbx = found == standalone::Format::fbx, gltf = found == standalone::Format::gltf;
  const auto refuse = [&](const char* option, const std::string& value, bool used, const char* formats) {
    if (!value.empty() && !used)
      throw UsageError(file + ": " + prefix + option + " is for " + formats + " scenes; leave it out");
  };
  refuse("take", take, fbx || gltf, "FBX and glTF");
  refuse("fps", fps, gltf, "glTF");
  refuse("axis", axis, fbx, "FBX");
  refuse("unit", unit, fbx, "FBX");
}

standalone::ReadOptions SceneOptions::read_options() const {
  standalone::ReadOptions options;
  if (!format.empty()) options.format = standalone::format_by_extension("scene." + format);
  options.take = take;
  options.frames_per_second = fps.empty() ? frames_per_second : *parse_number(fps);
  options.up_axis = axis.empty() ? up_axis : axis.front();
  options.linear_unit = unit;
  return options;
}

void SceneOptions::apply_range(standalone::Scene& scene, std::size_t trails) const {
  const FrameRange asked = parse_range(range).value_or(FrameRange{});
  const double min = scene.settings.playback_min(), max = scene.settings.playback_max();
  const double first = asked.first.value_or(min), last = asked.last.value_or(max);
  const double frames = last - first;
  if (!range.empty() && !(frames > 0.0))
    throw Failure(file + ": --range " + range + " leaves nothing of its frames, " + readable(min, 8) + " to " +
                  readable(max, 8) + "; name both ends");
  if ((asked.first && asked.last) || !(frames > kMaxFramesUnasked)) {
    if (!range.empty()) scene.settings.set_playback_range(first, last);
    return;
  }
  constexpr double kBytes = 100.0;  // of a sample while its trail is made
  throw Failure(file + ": its range of " + readable(frames, 8) + " frames is longer than a million; " +
                counted(trails, "trail") + " over it would take about " +
                readable(frames * kBytes * static_cast<double>(trails) / 1e9, 2) +
                " GB; name the frames with --range FIRST:LAST");
}

namespace {

constexpr const char* kScene =
    "The scene: Maya ASCII (.ma), FBX (.fbx), glTF (.gltf, .glb), BVH (.bvh) or samples (.samples); - is standard "
    "input";

void add_reading_options(CLI::App& command, SceneOptions& options) {
  add_choice(command, "--format", options.format, {"ma", "fbx", "gltf", "bvh", "samples"},
             "What the scene is (default: what its extension or its content says)");
  command.add_option("--take", options.take, "The FBX take or glTF clip (default: the first; info lists them)")
      ->type_name("NAME");
  add_rate(command, "--fps", options.fps, "Frames a second of a glTF scene, which has none (default: 24)");
  add_choice(command, "--axis", options.axis, {"y-up", "z-up"}, "Turn an FBX scene (default: its own axes)");
  add_choice(command, "--unit", options.unit, {"mm", "cm", "m", "km", "in", "ft", "yd"},
             "Convert an FBX scene's lengths (default: its own unit)");
}

}  // namespace

void add_scene_argument(CLI::App& command, SceneOptions& options) {
  command.add_option("SCENE", options.file, kScene)->required();
  add_reading_options(command, options);
}

void add_scene_arguments(CLI::App& command, std::vector<std::string>& scenes, SceneOptions& options) {
  command.add_option("SCENE", scenes, std::string(kScene) + "; several are done one by one")->required();
  add_reading_options(command, options);
}

void add_selection_options(CLI::App& command, SceneOptions& options) {
  add_repeated(command, "--select", options.selection.patterns,
               "Objects by name or path, or patterns as '*_L', 'Hips|**'; may be repeated (default: what is animated)")
      ->type_name("PATTERN");
  command.add_flag("--all", options.selection.all, "Every transform, animated or not");
  add_repeated(command, "--exclude", options.selection.exclude, "Objects to leave out; may be repeated")
      ->type_name("PATTERN");
  command.add_flag("--ignore-case", options.selection.ignore_case, "Patterns take a to z for A to Z");
  add_checked(command, "--range", options.range, "FIRST:LAST",
              "First and last frame, as 1:48, 10: or :20 (default: the scene's own)",
              "a valid range; write FIRST:LAST, as 1:48",
              [](const std::string& text) { return parse_range(text).has_value(); });
}

std::optional<FrameRange> parse_range(const std::string& text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos) return std::nullopt;
  const std::string_view before = std::string_view(text).substr(0, colon),
                         after = std::string_view(text).substr(colon + 1);
  const FrameRange range{parse_number(before), parse_number(after)};
  const bool understood =
      (range.first || before.empty()) && (range.last || after.empty()) && (range.first || range.last);
  if (!understood || (range.first && range.last && !(*range.first < *range.last))) return std::nullopt;
  return range;
}

CLI::Option* add_checked(CLI::App& command, const std::string& name, std::string& value, const std::string& type,
                         const std::string& description, const std::string& wanted,
                         const std::function<bool(const std::string&)>& understands) {
  return command.add_option(name, value, description)
      ->type_name(type)
      ->check(CLI::Validator(
          [understands, wanted](std::string& text) {
            return understands(text) ? std::string() : "'" + text + "' is not " + wanted;
          },
          ""));
}

CLI::Option* add_number(CLI::App& command, const std::string& name, std::string& value, const std::string& type,
                        const std::string& description) {
  return add_checked(command, name, value, type, description, "a number",
                     [](const std::string& text) { return parse_number(text).has_value(); });
}

std::string joined(const std::vector<std::string>& words, std::string_view separator) {
  std::string text;
  for (const std::string& word : words) {
    if (!text.empty()) text += separator;
    text += word;
  }
  return text;
}

CLI::Option* add_choice(CLI::App& command, const std::string& name, std::string& value,
                        const std::vector<std::string>& words, const std::string& description) {
  const std::string listed = joined(words);
  return command.add_option(name, value, description)
      ->type_name(joined(words, "|"))
      ->check(CLI::Validator(
          [words, listed](std::string& text) {
            const bool known = std::find(words.begin(), words.end(), text) != words.end();
            return known ? std::string() : "'" + text + "' is not one of " + listed;
          },
          ""));
}

std::vector<std::string> choices_of(const CLI::Option& option) {
  const std::string joined = option.get_type_name();
  std::vector<std::string> words;
  if (joined.find('|') == std::string::npos) return words;
  for (std::size_t at = 0; at != std::string::npos;) {
    const std::size_t bar = joined.find('|', at);
    words.push_back(joined.substr(at, bar == std::string::npos ? bar : bar - at));
    at = bar == std::string::npos ? bar : bar + 1;
  }
  return words;
}

CLI::Option* add_integer(CLI::App& command, const std::string& name, std::optional<std::int64_t>& value,
                         std::int64_t minimum, std::int64_t maximum, const std::string& description) {
  return command.add_option(name, value, description)
      ->type_name("N")
      ->check(CLI::Validator(
          [minimum, maximum](std::string& text) {
            const auto number = parse_number(text);
            const bool fits = number && *number == std::floor(*number) && *number >= static_cast<double>(minimum) &&
                              *number <= static_cast<double>(maximum);
            return fits ? std::string()
                        : "'" + text + "' is not a whole number from " + std::to_string(minimum) + " to " +
                              std::to_string(maximum);
          },
          ""));
}

CLI::Option* add_rate(CLI::App& command, const std::string& name, std::string& value, const std::string& description) {
  return add_checked(command, name, value, "RATE", description, "a valid rate; write a number above 0, as 30",
                     [](const std::string& text) { return parse_number(text).value_or(0.0) > 0.0; });
}

CLI::Option* add_repeated(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                          const std::string& description) {
  return command.add_option(name, values, description)
      ->allow_extra_args(false)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

std::string extension_of(const std::string& path) {
  std::string extension = fs::path(path).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return extension;
}

void check_outputs(const std::vector<std::string>& outputs, const std::vector<std::string>& extensions,
                   const std::string& scene) {
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    const std::string& out = outputs[i];
    if (std::find(extensions.begin(), extensions.end(), extension_of(out)) == extensions.end())
      throw UsageError("--out " + out + ": its extension must name the format; use one of " + joined(extensions));
    for (std::size_t k = 0; k < i; ++k) {
      if (same_file(outputs[k], out)) throw UsageError("--out " + out + ": named twice; write to different files");
      if (OutputFile::means_stdout(outputs[k]) && OutputFile::means_stdout(out))
        throw UsageError("--out " + out + ": standard output already takes " + outputs[k] +
                         "; write one of them to a file");
    }
    if (same_file(out, scene)) throw UsageError("--out " + out + ": would overwrite the scene; name another file");
  }
}

}  // namespace vantorelix::cli
