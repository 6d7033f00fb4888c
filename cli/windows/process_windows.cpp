#include <windows.h>

#include <filesystem>

#include "cli/terminal/process.h"
#include "cli/windows/command_line_windows.h"

namespace vantorelix::cli {

namespace {

HANDLE handle_of(std::intptr_t id) {
  return reinterpret_cast<HANDLE>(id);  // NOLINT(performance-no-int-to-ptr): a handle is a number
}

}  // namespace

Process::Process(std::vector<std::string> words) {
  std::wstring line;
  for (const std::string& word : words)
    line += (line.empty() ? L"" : L" ") + quoted(std::filesystem::path(word).wstring());
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION made{};
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW | CREATE_SUSPENDED, nullptr,
                      nullptr, &start, &made))
    return;
  const HANDLE group = CreateJobObjectW(nullptr, nullptr);
  AssignProcessToJobObject(group, made.hProcess);  // before it runs: what it starts belongs to it
  ResumeThread(made.hThread);
  CloseHandle(made.hThread);
  id_ = reinterpret_cast<std::intptr_t>(made.hProcess);
  group_ = reinterpret_cast<std::intptr_t>(group);
}

std::optional<bool> Process::wait(std::chrono::milliseconds time) {
  if (id_ == -1) return false;
  if (WaitForSingleObject(handle_of(id_), static_cast<DWORD>(time.count())) != WAIT_OBJECT_0) return std::nullopt;
  DWORD code = 1;
  GetExitCodeProcess(handle_of(id_), &code);
  CloseHandle(handle_of(id_));
  CloseHandle(handle_of(group_));
  id_ = -1;
  return code == 0;
}

void Process::end() {
  if (id_ == -1) return;
  TerminateJobObject(handle_of(group_), 1);
  wait(std::chrono::milliseconds(INFINITE));  // what it holds open is free from here on
}

}  // namespace vantorelix::cli
