#include "cli/terminal/process.h"

#include <thread>

#ifdef _WIN32
#include <windows.h>

#include <filesystem>
#else
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#endif

namespace vantorelix::cli {

#ifdef _WIN32

Process::Process(std::vector<std::string> words) {
  std::wstring line;
  // No path of this system holds a quotation mark.
  for (const std::string& word : words)
    line += (line.empty() ? L"\"" : L" \"") + std::filesystem::path(word).wstring() + L'"';
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION made{};
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr, nullptr, &start, &made))
    return;
  CloseHandle(made.hThread);
  id_ = reinterpret_cast<std::intptr_t>(made.hProcess);
}

std::optional<bool> Process::wait(std::chrono::milliseconds time) {
  if (id_ == -1) return false;
  const auto handle = reinterpret_cast<HANDLE>(id_);
  if (WaitForSingleObject(handle, static_cast<DWORD>(time.count())) != WAIT_OBJECT_0) return std::nullopt;
  DWORD code = 1;
  GetExitCodeProcess(handle, &code);
  CloseHandle(handle);
  id_ = -1;
  return code == 0;
}

void Process::end() {
  if (id_ != -1) TerminateProcess(reinterpret_cast<HANDLE>(id_), 1);
}

#else

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

#endif

}  // namespace vantorelix::cli
