// Options that several commands share, and the words that their values may be.
#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/terminal/terminal.h"
#include "session/selection.h"
#include "standalone/formats/reader.h"
#include "standalone/scene/scene.h"

namespace vantorelix::cli {

// Of every command, before or after its name.
struct CommonOptions {
  bool quiet = false;
  bool strict = false;
  std::string color = "auto";
  std::string log_format = "text";

  ColorUse color_use() const;
  LogFormat log_lines() const { return log_format == "json" ? LogFormat::json : LogFormat::text; }
};
void add_common_options(CLI::App& command, CommonOptions& options);

// The scene, how to read it, and which objects of it over which frames.
struct SceneOptions {
  std::string file;
  std::string take, fps, axis, unit;
  std::string format;         // what the file is: "samples"; empty where its name or content says so
  std::string prefix = "--";  // of the four before, as they were typed
  session::Selection selection;
  std::string range;

  // How the scene is read where no option says it.
  double frames_per_second = standalone::ReadOptions().frames_per_second;
  char up_axis = standalone::ReadOptions().up_axis;

  // Throws UsageError for an option that the file's format has no use for.
  void check_format(standalone::Format found) const;
  standalone::ReadOptions read_options() const;
  // Sets the playback range when one was asked for. Throws Failure when that leaves nothing of the scene's own, and
  // when an end of more than kMaxFramesUnasked frames is the scene's own, with what so many trails of it would take.
  void apply_range(standalone::Scene& scene, std::size_t trails) const;
};
inline constexpr double kMaxFramesUnasked = 1'000'000.0;
void add_scene_argument(CLI::App& command, SceneOptions& options);
// Of a command that takes any number of scenes.
void add_scene_arguments(CLI::App& command, std::vector<std::string>& scenes, SceneOptions& options);
void add_selection_options(CLI::App& command, SceneOptions& options);

// An end that is missing is that of the scene's own range.
struct FrameRange {
  std::optional<double> first, last;
};
// "A:B" with A < B, "A:" or ":B", decimals and signs allowed; nothing for anything else.
std::optional<FrameRange> parse_range(const std::string& text);

// A finite number; nothing for anything else.
std::optional<double> parse_number(std::string_view text);

// An option that takes a text, which has to be understood: otherwise the error says that it "is not" what is wanted.
CLI::Option* add_checked(CLI::App& command, const std::string& name, std::string& value, const std::string& type,
                         const std::string& description, const std::string& wanted,
                         const std::function<bool(const std::string&)>& understands);

// An option that takes a finite number, which stays a text until it is used: empty when it was not given.
CLI::Option* add_number(CLI::App& command, const std::string& name, std::string& value, const std::string& type,
                        const std::string& description);

// The words in a row: "trails, view, info".
std::string joined(const std::vector<std::string>& words, std::string_view separator = ", ");

// An option that takes one of these words, offered to the completion of shells too.
CLI::Option* add_choice(CLI::App& command, const std::string& name, std::string& value,
                        const std::vector<std::string>& words, const std::string& description);
// The words that an option takes; empty when it takes anything.
std::vector<std::string> choices_of(const CLI::Option& option);

// An option that takes a whole number from `minimum` to `maximum`.
CLI::Option* add_integer(CLI::App& command, const std::string& name, std::optional<std::int64_t>& value,
                         std::int64_t minimum, std::int64_t maximum, const std::string& description);

// An option that takes frames a second.
CLI::Option* add_rate(CLI::App& command, const std::string& name, std::string& value, const std::string& description);

// An option that can be given several times, one value each.
CLI::Option* add_repeated(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                          const std::string& description);

// Throws UsageError unless every path has one of the extensions (".json"), none is named twice, and none is the scene.
void check_outputs(const std::vector<std::string>& outputs, const std::vector<std::string>& extensions,
                   const std::string& scene);
// The extension in lower case; of "-.json" too.
std::string extension_of(const std::string& path);

}  // namespace vantorelix::cli
