#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <filesystem>
#ifdef __APPLE__
#include <mach-o/dyld.h>
#endif

#include "cli/terminal/job.h"

namespace vantorelix::cli {

namespace {

// Empty where the system does not tell.
std::string own_program() {
#ifdef __APPLE__
  std::array<char, 4096> path{};
  auto size = static_cast<std::uint32_t>(path.size());
  return _NSGetExecutablePath(path.data(), &size) == 0 ? path.data() : "";
#else
  std::error_code error;
  const std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? "" : path.string();
#endif
}

// Holds the signal on which a job ends. What comes between its birth and the program would be lost with our handler.
sigset_t hold_stop() {
  sigset_t stop, before;
  sigemptyset(&stop);
  sigaddset(&stop, SIGTERM);
  sigprocmask(SIG_BLOCK, &stop, &before);
  return before;
}

// In the child: becomes the program.
[[noreturn]] void become(const std::vector<char*>& words, int errors, const sigset_t& signals) {
  std::signal(SIGTERM, SIG_DFL);
  sigprocmask(SIG_SETMASK, &signals, nullptr);
  setpgid(0, 0);
  const int nowhere = open("/dev/null", O_RDWR);
  dup2(nowhere, STDIN_FILENO);
  dup2(nowhere, STDOUT_FILENO);
  dup2(errors, STDERR_FILENO);
  execv(words[0], words.data());
  _exit(127);
}

}  // namespace

Job::Job(const std::vector<std::string>& arguments) : errors_(std::tmpfile()) {
  if (!errors_) fail_to_start();
  std::vector<std::string> words = {own_program()};
  if (words.front().empty()) fail_to_start();
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  std::signal(SIGCHLD, SIG_DFL);  // where it is ignored, nobody learns how a child ended
  const sigset_t signals = hold_stop();
  const pid_t made = fork();
  if (made == 0) become(pointers, fileno(errors_.get()), signals);
  sigprocmask(SIG_SETMASK, &signals, nullptr);
  if (made < 0) fail_to_start();
  id_ = made;
}

std::optional<int> Job::exit_code() {
  if (id_ == 0) return exit_code_;
  int status = 0;
  if (waitpid(static_cast<pid_t>(id_), &status, WNOHANG) == 0) return std::nullopt;
  id_ = 0;
  exit_code_ = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  return exit_code_;
}

void Job::stop() {
  if (id_ != 0 && !stopped_) kill(static_cast<pid_t>(id_), SIGTERM);
  stopped_ = true;
}

}  // namespace vantorelix::cli
