#include "cli/args/command_info.h"

#include "cli/args/options.h"

namespace vantorelix::cli {

CommandInfo describe(const CLI::App& app) {
  CommandInfo command{app.get_name(), app.get_description(), {}, {}, {}, false, app.get_footer()};
  for (const CLI::Option* option : app.get_options()) {
    if (option->get_positional()) {
      command.words = choices_of(*option);
      command.several = option->get_items_expected_max() > 1;
      command.argument = option->get_single_name();
      continue;
    }
    OptionInfo info{{},   option->get_description(), choices_of(*option), {}, option->get_items_expected_max() > 0,
                    false};
    for (const std::string& name : option->get_snames()) info.names.push_back("-" + name);
    for (const std::string& name : option->get_lnames()) info.names.push_back("--" + name);
    if (info.takes_value) info.type = option->get_type_name();
    info.takes_file = info.takes_value && option->get_type_name() == "FILE";
    command.options.push_back(info);
  }
  return command;
}

std::vector<CommandInfo> commands_of(const CLI::App& program) {
  std::vector<CommandInfo> commands;
  for (const CLI::App* app : program.get_subcommands([](const CLI::App*) { return true; }))
    commands.push_back(describe(*app));
  return commands;
}

}  // namespace vantorelix::cli
