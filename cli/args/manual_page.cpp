#include "cli/args/manual_page.h"

#include "cli/args/command_info.h"
#include "cli/args/options.h"

namespace vantorelix::cli {

namespace {

// A text as roff shows it unchanged: dashes that can be copied, no line that is taken for a request.
std::string escaped(const std::string& text) {
  std::string out;
  bool at_start = true;
  for (const char c : text) {
    if (at_start && (c == '.' || c == '\'')) out += "\\&";
    if (c == '\\')
      out += "\\e";
    else if (c == '-')
      out += "\\-";
    else
      out += c;
    at_start = c == '\n';
  }
  return out;
}

std::string bold(const std::string& text) { return "\\fB" + escaped(text) + "\\fR"; }
std::string italic(const std::string& text) { return "\\fI" + escaped(text) + "\\fR"; }

std::string option_entry(const OptionInfo& option) {
  std::string names;
  for (const std::string& name : option.names) names += (names.empty() ? "" : ", ") + bold(name);
  if (option.takes_value) names += " " + italic(option.type);
  return ".TP\n" + names + "\n" + escaped(option.description) + "\n";
}

std::string option_entries(const CommandInfo& command) {
  std::string text;
  for (const OptionInfo& option : command.options) text += option_entry(option);
  return text;
}

// Texts whose lines stand as they are.
std::string verbatim(const std::string& text) {
  const std::size_t start = text.find_first_not_of('\n');
  return start == std::string::npos ? "" : ".PP\n.nf\n" + escaped(text.substr(start)) + "\n.fi\n";
}

std::string command_section(const CommandInfo& command) {
  const std::string argument = command.argument.empty() ? "" : " " + italic(command.argument);
  return ".SS " + bold("vantorelix " + command.name) + argument + "\n" + escaped(command.description) + ".\n" +
         option_entries(command) + verbatim(command.footer);
}

}  // namespace

std::string manual_page(const CLI::App& program, const std::string& version) {
  const CommandInfo own = describe(program);
  const auto commands = commands_of(program);
  std::vector<std::string> names;
  for (const CommandInfo& command : commands) names.push_back(bold(command.name));
  std::string text = ".TH VANTORELIX 1 \"\" \"" + escaped(version) + "\" \"User Commands\"\n.SH NAME\nvantorelix \\- " +
                     "motion trails of animated scenes\n.SH SYNOPSIS\n" + bold("vantorelix") + " " + italic("COMMAND") +
                     " [" + italic("OPTIONS") + "] " + italic("SCENE") + "\n.SH DESCRIPTION\n" +
                     escaped(own.description) + "\n.PP\nThe commands are " + joined(names) + ".\n.SH OPTIONS\n" +
                     option_entries(own) + ".SH COMMANDS\n";
  for (const CommandInfo& command : commands) text += command_section(command);
  return text + ".SH EXAMPLES AND EXIT CODES" + "\n" + verbatim(own.footer);
}

}  // namespace vantorelix::cli
