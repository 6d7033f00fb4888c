#include "cli/args/completion.h"

#include <cstdio>
#include <memory>

#include "cli/commands/commands.h"

namespace vantorelix::cli {

namespace {

constexpr const char* kCompletionFooter = R"(
Examples:
  source <(vantorelix completion bash)
  vantorelix completion zsh > ~/.zfunc/_vantorelix
  vantorelix completion fish > ~/.config/fish/completions/vantorelix.fish)";

}  // namespace

Command add_completion(CLI::App& program) {
  CLI::App& command = *program.add_subcommand("completion", "Print the completion script of a shell");
  const auto shell = std::make_shared<std::string>();
  add_choice(command, "SHELL", *shell, {"bash", "zsh", "fish"}, "Which shell")->required();
  command.footer(kCompletionFooter);
  return {&command, [shell, &program](Terminal&) { std::printf("%s", completion_script(program, *shell).c_str()); }};
}

}  // namespace vantorelix::cli
