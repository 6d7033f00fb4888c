#include "cli/terminal/process.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <thread>

namespace vantorelix::cli {

namespace {

// In the child: becomes the program.
[[noreturn]] void become(const std::vector<char*>& words) {
  setsid();
  const int nowhere = open("/dev/null", O_RDWR);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) dup2(nowhere, stream);
  execvp(words[0], words.data());
  _exit(127);
}

}  // namespace

Process::Process(std::vector<std::string> words) {
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  id_ = fork();
  if (id_ == 0) become(arguments);
}

std::optional<bool> Process::wait(std::chrono::milliseconds time) {
  if (id_ < 0) return false;
  constexpr auto kMoment = std::chrono::milliseconds(10);
  for (auto waited = std::chrono::milliseconds(0);; waited += kMoment) {
    int status = 0;
    if (waitpid(static_cast<pid_t>(id_), &status, WNOHANG) != 0) {
      id_ = -1;
      return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
    if (waited >= time) return std::nullopt;
    std::this_thread::sleep_for(kMoment);
  }
}

void Process::end() {
  if (id_ < 0) return;
  kill(-static_cast<pid_t>(id_), SIGKILL);
  waitpid(static_cast<pid_t>(id_), nullptr, 0);
  id_ = -1;
}

}  // namespace vantorelix::cli
