#include <windows.h>
//
#include <io.h>

#include <array>
#include <filesystem>

#include "cli/terminal/job.h"
#include "cli/windows/command_line_windows.h"

namespace vantorelix::cli {

namespace {

std::wstring own_program() {
  std::array<wchar_t, 32768> path{};
  const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
  return {path.data(), length};
}

HANDLE nowhere(DWORD access) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  return CreateFileW(L"NUL", access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, OPEN_EXISTING, 0, nullptr);
}

}  // namespace

Job::Job(const std::vector<std::string>& arguments) : errors_(std::tmpfile()) {
  if (!errors_) fail_to_start();
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
  if (!started) fail_to_start();
  CloseHandle(made.hThread);
  id_ = reinterpret_cast<std::intptr_t>(made.hProcess);
  group_ = made.dwProcessId;
}

std::optional<int> Job::exit_code() {
  if (id_ == 0) return exit_code_;
  const auto handle = reinterpret_cast<HANDLE>(id_);  // NOLINT(performance-no-int-to-ptr): a handle is a number
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

}  // namespace vantorelix::cli
