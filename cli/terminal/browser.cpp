#include "cli/terminal/browser.h"

#include <array>
#include <cstdlib>
#include <sstream>
#include <string_view>
#include <vector>

#ifdef _WIN32
#include <windows.h>

#include <shellapi.h>
#else
#include <chrono>
#include <utility>

#include "cli/terminal/process.h"
#endif

namespace vantorelix::cli {

namespace fs = std::filesystem;

std::string file_address(const fs::path& file) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  static constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/:";
  const std::string path = file.generic_string();
  std::string address = path.starts_with('/') ? "file://" : "file:///";
  for (const char c : path) {
    if (kPlain.find(c) != std::string_view::npos) {
      address += c;
    } else {
      address += '%';
      address += kHex[static_cast<unsigned char>(c) >> 4];
      address += kHex[static_cast<unsigned char>(c) & 15];
    }
  }
  return address;
}

#ifdef _WIN32

bool open_in_browser(const fs::path& file) {
  const auto code = ShellExecuteW(nullptr, L"open", file.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
  return reinterpret_cast<INT_PTR>(code) > 32;  // as its manual has it
}

#else

namespace {

using Words = std::vector<std::string>;

std::string variable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

// One browser of BROWSER: its words, with the address in them.
Words command(const std::string& text, const std::string& address) {
  Words words;
  bool placed = false;
  std::istringstream stream(text);
  for (std::string word; stream >> word;) {
    for (std::size_t at = word.find("%s"); at != std::string::npos; at = word.find("%s", at + address.size())) {
      word.replace(at, 2, address);
      placed = true;
    }
    words.push_back(word);
  }
  if (!words.empty() && !placed) words.push_back(address);
  return words;
}

std::vector<Words> commands(const std::string& address) {
  const std::string named = variable("BROWSER");
#ifdef __APPLE__
  if (named.empty()) return {{"open", address}};
#else
  // Without a screen it would look for a browser that needs a terminal, which nobody would see.
  if (named.empty() && variable("DISPLAY").empty() && variable("WAYLAND_DISPLAY").empty()) return {};
  if (named.empty()) return {{"xdg-open", address}};
#endif
  std::vector<Words> all;
  std::istringstream stream(named);
  for (std::string one; std::getline(stream, one, ':');)
    if (Words words = command(one, address); !words.empty()) all.push_back(std::move(words));
  return all;
}

// A browser that still runs after a while, or ended well, has the address.
bool start(Words words) { return Process(std::move(words)).wait(std::chrono::seconds(2)).value_or(true); }

}  // namespace

bool open_in_browser(const fs::path& file) {
  for (const Words& words : commands(file_address(file)))
    if (start(words)) return true;
  return false;
}

#endif

}  // namespace vantorelix::cli
