#include <windows.h>
//
#include <shellapi.h>

#include <cstdlib>

#include "cli/terminal/browser.h"

namespace vantorelix::cli {

bool open_in_browser(const std::filesystem::path& file) {
  const HINSTANCE code = ShellExecuteW(nullptr, L"open", file.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
  return reinterpret_cast<INT_PTR>(code) > 32;  // as its manual has it
}

std::vector<std::string> installed_browsers() {
  std::vector<std::string> places;
  for (const char* variable : {"ProgramFiles", "ProgramFiles(x86)", "LocalAppData"}) {
    const char* folder = std::getenv(variable);
    if (folder == nullptr) continue;
    for (const char* program :
         {"\\Google\\Chrome\\Application\\chrome.exe", "\\Microsoft\\Edge\\Application\\msedge.exe",
          "\\Chromium\\Application\\chrome.exe", "\\Mozilla Firefox\\firefox.exe"})
      places.push_back(std::string(folder) + program);
  }
  return places;
}

std::vector<std::string> chromium_options() { return {}; }

}  // namespace vantorelix::cli
