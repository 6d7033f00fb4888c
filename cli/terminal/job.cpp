#include "cli/terminal/job.h"

#include <array>
#include <chrono>
#include <filesystem>
#include <thread>

#include "cli/terminal/failure.h"

#ifdef _WIN32
#include <windows.h>

#include <io.h>
#else
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#ifdef __APPLE__
#include <mach-o/dyld.h>
#endif
#endif

namespace vantorelix::cli {

namespace {

[[noreturn]] void fail() {
  throw Failure("no further process could be started; lower --jobs, or look for what takes up the system");
}

}  // namespace

#ifdef _WIN32

namespace {

std::wstring own_program() {
  std::array<wchar_t, 32768> path{};
  const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
  return {path.data(), length};
}

// As the C library's start-up code takes a command line apart: backslashes count as such unless a quotation mark
// follows.
std::wstring quoted(const std::wstring& word) {
  std::wstring text = L"\"";
  std::size_t backslashes = 0;
  for (const wchar_t c : word) {
    if (c == L'"') text.append(backslashes + 1, L'\\');
    backslashes = c == L'\\' ? backslashes + 1 : 0;
    text += c;
  }
  return text.append(backslashes, L'\\') + L'"';
}

HANDLE nowhere(DWORD access) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  return CreateFileW(L"NUL", access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, OPEN_EXISTING, 0, nullptr);
}

}  // namespace

Job::Job(const std::vector<std::string>& arguments) : errors_(std::tmpfile()) {
  if (!errors_) fail();
  std::wstring line = quoted(own_program());
  for (const std::string& word : arguments) line += L' ' + quoted(std::filesystem::path(word).wstring());
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = nowhere(GENERIC_READ);
  start.hStdOutput = nowhere(GENERIC_WRITE);
  start.hStdError = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(errors_.get())));
  SetHandleInformation(start.hStdError, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
  PROCESS_INFORMATION made{};
  const bool started = CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_NEW_PROCESS_GROUP, nullptr,
                                      nullptr, &start, &made) != 0;
  SetHandleInformation(start.hStdError, HANDLE_FLAG_INHERIT, 0);
  CloseHandle(start.hStdInput);
  CloseHandle(start.hStdOutput);
  if (!started) fail();
  CloseHandle(made.hThread);
  id_ = reinterpret_cast<std::intptr_t>(made.hProcess);
  group_ = made.dwProcessId;
}

std::optional<int> Job::exit_code() {
  if (id_ == 0) return exit_code_;
  const auto handle = reinterpret_cast<HANDLE>(id_);
  if (WaitForSingleObject(handle, 0) != WAIT_OBJECT_0) return std::nullopt;
  DWORD code = 1;
  GetExitCodeProcess(handle, &code);
  CloseHandle(handle);
  id_ = 0;
  exit_code_ = static_cast<int>(code);
  return exit_code_;
}

void Job::stop() {
  if (id_ != 0 && !stopped_) GenerateConsoleCtrlEvent(CTRL_BREAK_EVENT, group_);
  stopped_ = true;
}

#else

namespace {

std::string own_program() {
#ifdef __APPLE__
  std::array<char, 4096> path{};
  auto size = static_cast<std::uint32_t>(path.size());
  if (_NSGetExecutablePath(path.data(), &size) != 0) fail();
  return path.data();
#else
  std::error_code error;
  const std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) fail();
  return path.string();
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
  if (!errors_) fail();
  std::vector<std::string> words = {own_program()};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  std::signal(SIGCHLD, SIG_DFL);  // where it is ignored, nobody learns how a child ended
  const sigset_t signals = hold_stop();
  const pid_t made = fork();
  if (made == 0) become(pointers, fileno(errors_.get()), signals);
  sigprocmask(SIG_SETMASK, &signals, nullptr);
  if (made < 0) fail();
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

#endif

Job::~Job() {
  stop();
  while (!exit_code()) std::this_thread::sleep_for(std::chrono::milliseconds(2));
}

std::string Job::errors() {
  std::string text;
  std::rewind(errors_.get());
  std::array<char, 4096> piece{};
  for (std::size_t size = 1; size != 0;) {
    size = std::fread(piece.data(), 1, piece.size(), errors_.get());
    text.append(piece.data(), size);
  }
  return text;
}

}  // namespace vantorelix::cli
