#include "cli/args/completion.h"

#include <vector>

#include "cli/args/command_info.h"
#include "cli/args/options.h"

namespace vantorelix::cli {

namespace {

std::string option_words(const CommandInfo& command) {
  std::vector<std::string> names;
  for (const OptionInfo& option : command.options) names.insert(names.end(), option.names.begin(), option.names.end());
  return joined(names, " ");
}

std::vector<std::string> names_of(const std::vector<CommandInfo>& commands) {
  std::vector<std::string> names;
  for (const CommandInfo& command : commands) names.push_back(command.name);
  return names;
}

std::string bash_values(const CommandInfo& command) {
  std::string text;
  for (const OptionInfo& option : command.options) {
    if (!option.takes_value) continue;
    const std::string pattern = command.name + ":" + joined(option.names, "|" + command.name + ":");
    if (!option.choices.empty())
      text += "    " + pattern + ") COMPREPLY=($(compgen -W \"" + joined(option.choices, " ") +
              "\" -- \"$word\")); return ;;\n";
    else
      text += "    " + pattern + ") " + (option.takes_file ? "compopt -o default; " : "") + "return ;;\n";
  }
  return text;
}

std::string bash_script(const std::vector<CommandInfo>& commands, const CommandInfo& program) {
  std::string text =
      "# bash completion of vantorelix: source <(vantorelix completion bash)\n"
      "_vantorelix() {\n"
      "  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} command= i\n"
      "  COMPREPLY=()\n"
      "  for ((i = 1; i < COMP_CWORD; i++)); do\n"
      "    case ${COMP_WORDS[i]} in " +
      joined(names_of(commands), "|") +
      ") command=${COMP_WORDS[i]}; break ;; esac\n"
      "  done\n"
      "  case $command:$before in\n" +
      bash_values({"", "", program.options, {}, {}});
  for (const CommandInfo& command : commands) text += bash_values(command);
  text += "  esac\n  case $command in\n";
  for (const CommandInfo& command : commands) {
    text += "    " + command.name + ") if [[ $word == -* ]]; then COMPREPLY=($(compgen -W \"" + option_words(command) +
            "\" -- \"$word\"));\n      else ";
    text += command.words.empty()
                ? "compopt -o default; fi ;;\n"
                : "COMPREPLY=($(compgen -W \"" + joined(command.words, " ") + "\" -- \"$word\")); fi ;;\n";
  }
  return text + "    *) COMPREPLY=($(compgen -W \"" + joined(names_of(commands), " ") + " " + option_words(program) +
         "\" -- \"$word\")) ;;\n  esac\n}\ncomplete -F _vantorelix vantorelix\n";
}

// The text in single quotes for a shell. In what zsh's _arguments reads, colons, brackets and backslashes have a
// meaning of their own and are escaped too.
std::string quoted(const std::string& text, bool for_zsh) {
  std::string out = "'";
  for (const char c : text) {
    if (c == '\'')
      out += "'\\''";
    else if (for_zsh && (c == ':' || c == '[' || c == ']' || c == '\\'))
      out += std::string("\\") + c;
    else
      out += c;
  }
  return out + "'";
}

std::string zsh_option(const OptionInfo& option) {
  std::string text;
  for (const std::string& name : option.names) {
    text += " \\\n        '*" + name + "'" + quoted("[", false) + quoted(option.description, true) + "']'";
    if (!option.choices.empty())
      text += "':value:(" + joined(option.choices, " ") + ")'";
    else if (option.takes_value)
      text += option.takes_file ? "':file:_files'" : "':value: '";
  }
  return text;
}

std::string zsh_script(const std::vector<CommandInfo>& commands, const CommandInfo& program) {
  std::string text =
      "#compdef vantorelix\n# zsh completion of vantorelix: put it as _vantorelix into a folder of $fpath\n"
      "_vantorelix() {\n  local context state line\n  typeset -A opt_args\n  _arguments -C";
  for (const OptionInfo& option : program.options) text += zsh_option(option);
  text +=
      " \\\n        '1:command:->command' '*::argument:->argument'\n  case $state in\n    command)\n      local -a "
      "names\n      names=(";
  for (const CommandInfo& command : commands)
    text += "\n        " + quoted(command.name + ":" + command.description, false);
  text += ")\n      _describe command names ;;\n    argument)\n      case $line[1] in\n";
  for (const CommandInfo& command : commands) {
    text += "      " + command.name + ") _arguments";
    for (const OptionInfo& option : command.options) text += zsh_option(option);
    if (!command.argument.empty())
      text += std::string(" \\\n        '") + (command.several ? "*" : "1") +
              (command.words.empty() ? ":scene:_files" : ":word:(" + joined(command.words, " ") + ")") + "'";
    text += " ;;\n";
  }
  return text +
         "      esac ;;\n  esac\n}\nif [[ $funcstack[1] == _vantorelix ]]; then _vantorelix \"$@\"; else compdef "
         "_vantorelix vantorelix; fi\n";
}

std::string fish_option(const OptionInfo& option, const std::string& condition) {
  std::string text = "complete -c vantorelix";
  if (!condition.empty()) text += " -n '" + condition + "'";
  for (const std::string& name : option.names)
    text += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
  if (!option.choices.empty())
    text += " -x -a '" + joined(option.choices, " ") + "'";
  else if (option.takes_value)
    text += option.takes_file ? " -r -F" : " -x";
  return text + " -d " + quoted(option.description, false) + "\n";
}

std::string fish_script(const std::vector<CommandInfo>& commands, const CommandInfo& program) {
  std::string text =
      "# fish completion of vantorelix: vantorelix completion fish | source\n"
      "complete -c vantorelix -n __fish_use_subcommand -f\n";
  for (const OptionInfo& option : program.options) text += fish_option(option, "__fish_use_subcommand");
  for (const CommandInfo& command : commands) {
    const std::string condition = "__fish_seen_subcommand_from " + command.name;
    text += "complete -c vantorelix -n __fish_use_subcommand -f -a " + command.name + " -d " +
            quoted(command.description, false) + "\n";
    if (!command.words.empty())
      text += "complete -c vantorelix -n '" + condition + "' -f -a '" + joined(command.words, " ") + "'\n";
    for (const OptionInfo& option : command.options) text += fish_option(option, condition);
  }
  return text;
}

}  // namespace

std::string completion_script(const CLI::App& program, const std::string& shell) {
  const auto commands = commands_of(program);
  const CommandInfo own = describe(program);
  if (shell == "zsh") return zsh_script(commands, own);
  if (shell == "fish") return fish_script(commands, own);
  return bash_script(commands, own);
}

}  // namespace vantorelix::cli
