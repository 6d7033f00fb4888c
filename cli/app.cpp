#include "cli/app.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <vector>

#include "cli/args/options.h"
#include "cli/args/suggestion.h"
#include "cli/commands/commands.h"
#include "cli/output/licences.h"
#include "cli/terminal/failure.h"
#include "cli/terminal/interrupt.h"
#include "cli/terminal/terminal.h"
#include "engine/state/constants.h"
#include "host/error.h"
#include "session/failure.h"
#include "standalone/formats/reader.h"

namespace vantorelix::cli {

namespace {

constexpr const char* kProgramFooter = R"(
Examples:
  vantorelix trails bounce.ma                       what moves, and how fast
  vantorelix trails bounce.ma --out bounce.svg      a picture of it
  vantorelix view walk.bvh                          the same in the browser, from every side
  vantorelix measure walk.bvh                       how smooth it is, where it pops, which feet slide
  vantorelix trails walk.bvh --select '*Hand' --out hands.json --out hands.csv
  vantorelix trails shots/*.fbx --out 'out/{stem}.json' --jobs 4   many scenes at once
  vantorelix info walk.bvh                          what is in a scene

Exit codes: 0 done, 1 error, 2 wrong usage, 3 done with warnings (under --strict), 128 + N ended by signal N
(130: Ctrl-C).
'vantorelix help COMMAND' tells more about a command.)";

// Reports what is wrong with the command line; CLI11 itself would print the full help.
int usage_error(const std::string& text, const CLI::App& program, LogFormat log) {
  std::string command = "vantorelix";
  for (const CLI::App* sub : program.get_subcommands()) command += " " + sub->get_name();
  Terminal(ColorUse::automatic, false, log).error(text + "; see '" + command + " --help'");
  return kUsage;
}

std::string did_you_mean(const std::string& word, const std::vector<std::string>& words) {
  const auto nearest = nearest_word(word, words);
  return nearest ? " (did you mean '" + *nearest + "'?)" : "";
}

std::vector<std::string> names_of(const std::vector<Command>& commands) {
  std::vector<std::string> names;
  for (const Command& command : commands) names.push_back(command.app->get_name());
  return names;
}

std::string unknown_command(const CLI::App& program, const std::vector<Command>& commands) {
  const std::vector<std::string> names = names_of(commands);
  const auto rest = program.remaining();
  if (rest.empty()) return "no command was given; use one of " + joined(names);
  return "'" + rest.front() + "' is not a command" + did_you_mean(rest.front(), names) + "; use one of " +
         joined(names);
}

// The first argument that the command has no use for.
std::string unknown_argument(const CLI::App& command) {
  std::vector<std::string> options;
  for (const CLI::Option* option : command.get_options())
    for (const std::string& name : option->get_lnames()) options.push_back("--" + name);
  const auto rest = command.remaining();
  const auto option =
      std::find_if(rest.begin(), rest.end(), [](const std::string& each) { return each.starts_with("-"); });
  if (option == rest.end()) return "'" + rest.front() + "' is one argument too many";
  const std::string name = option->substr(0, option->find('='));
  return "'" + name + "' is not an option" + did_you_mean(name, options);
}

std::string what_is_wrong(const CLI::ParseError& error, const CLI::App& program, const std::vector<Command>& commands) {
  const auto is = [&](CLI::ExitCodes code) { return error.get_exit_code() == static_cast<int>(code); };
  const auto chosen = program.get_subcommands();
  if (chosen.empty() && is(CLI::ExitCodes::RequiredError)) return unknown_command(program, commands);
  if (!chosen.empty() && is(CLI::ExitCodes::ExtrasError)) return unknown_argument(*chosen.front());
  return error.what();
}

// "help" and "help COMMAND" stand for "--help" and "COMMAND --help". Help of what is not a command is an unknown
// command.
std::vector<std::string> arguments_of(int argc, const char* const* argv, const std::vector<std::string>& commands) {
  std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
  if (arguments.empty() || arguments.front() != "help") return arguments;
  arguments.erase(arguments.begin());
  const bool known =
      arguments.empty() || std::find(commands.begin(), commands.end(), arguments.front()) != commands.end();
  if (known) arguments.push_back("--help");
  return arguments;
}

std::string licence_texts() {
  std::string text;
  for (const std::string_view piece : licences()) text += piece;
  text.pop_back();  // the last line end is printed by who prints the text
  return text;
}

// Of a command line that may be wrong in other ways.
LogFormat asked_log_format(const std::vector<std::string>& arguments) {
  LogFormat asked = LogFormat::text;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const bool apart = arguments[i] == "--log-format" && i + 1 < arguments.size();
    const std::string word = apart ? "--log-format=" + arguments[i + 1] : arguments[i];
    if (word == "--log-format=json") asked = LogFormat::json;
    if (word == "--log-format=text") asked = LogFormat::text;
  }
  return asked;
}

// What to do about a session's failure, in terms of this program's options.
std::string remedy(session::Failure::Kind kind) {
  using Kind = session::Failure::Kind;
  switch (kind) {
    case Kind::range_too_short:
      return "; give a longer one with --range FIRST:LAST";
    case Kind::too_many_samples:
      return "; shorten the range with --range, or choose fewer objects with --select";
    case Kind::no_such_key:
      return "; 'vantorelix info' lists the frames of the first and last keys";
    case Kind::no_trail:
      return "; choose other objects with --select";
    case Kind::bad_pattern:
    case Kind::no_match:
    case Kind::no_object:
    case Kind::nothing_animated:
    case Kind::nothing_followed:
    case Kind::all_excluded:
      return "";  // choose_objects says it, which knows the file
    case Kind::cannot_place:
      return "";  // no command of the program places keys
  }
  return "";
}

int run_command(const Run& command, Terminal& terminal) {
  try {
    command(terminal);
    if (std::fflush(stdout) != 0) {
      check_interrupt();
      throw Failure("standard output: cannot be written; check where it goes");
    }
    return kDone;
  } catch (const UsageError& error) {
    terminal.error(error.what());
    return kUsage;
  } catch (const standalone::FormatError& error) {
    terminal.error(error.what(), {error.file(), error.line()});
  } catch (const session::Failure& failure) {
    terminal.error(failure.what() + remedy(failure.kind));
  } catch (const PartlyDone& interrupt) {
    terminal.error(interrupt.text());
    return interrupt_exit_code();
  } catch (const host::Interrupt&) {
    if (!reader_is_gone()) terminal.error("interrupted; no file was written");
    return interrupt_exit_code();
  } catch (const std::bad_alloc&) {
    terminal.error("not enough memory; shorten the range with --range, or choose fewer objects with --select");
  } catch (const std::exception& error) {
    terminal.error(error.what());
  }
  return kFailed;
}

}  // namespace

int run(int argc, const char* const* argv) {
  CLI::App program("Motion trails of animated scenes: where each object goes, frame by frame, and how fast.",
                   "vantorelix");
  CommonOptions common;
  program.set_version_flag("-V,--version", "vantorelix " VANTORELIX_VERSION " (engine " + SCRIPT_VERSION + ")");
  program.add_flag_callback(
      "--licences,--licenses", [] { throw CLI::CallForVersion(licence_texts(), kDone); },
      "Print the licences of what the program holds and exit");
  program.require_subcommand(1);
  program.allow_windows_style_options(false);  // "/" begins a path there, too
  program.footer(kProgramFooter);
  add_common_options(program, common);
  std::vector<Command> commands;
  for (const auto add :
       {add_trails, add_measure, add_view, add_page, add_info, add_curves, add_live, add_completion, add_manual})
    commands.push_back(add(program));
  for (const Command& command : commands) add_common_options(*command.app, common);

  const auto arguments = arguments_of(argc, argv, names_of(commands));
  try {
    program.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));  // as CLI11 wants them
  } catch (const CLI::Success& wanted) {
    program.exit(wanted);
    return kDone;
  } catch (const CLI::ParseError& error) {
    return usage_error(what_is_wrong(error, program, commands), program, asked_log_format(arguments));
  }
  catch_interrupts();
  Terminal terminal(common.color_use(), common.quiet, common.log_lines());
  for (const Command& command : commands) {
    if (!command.app->parsed()) continue;
    const int code = run_command(command.run, terminal);
    return code == kDone && common.strict && terminal.warnings() != 0 ? kWarned : code;
  }
  return kUsage;
}

}  // namespace vantorelix::cli
