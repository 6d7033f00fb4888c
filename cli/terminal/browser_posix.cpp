#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <sstream>
#include <utility>

#include "cli/terminal/browser.h"
#include "cli/terminal/process.h"

namespace vantorelix::cli {

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

bool open_in_browser(const std::filesystem::path& file) {
  for (const Words& words : commands(file_address(file)))
    if (start(words)) return true;
  return false;
}

std::vector<std::string> installed_browsers() {
#ifdef __APPLE__
  return {"/Applications/Google Chrome.app/Contents/MacOS/Google Chrome",
          "/Applications/Chromium.app/Contents/MacOS/Chromium",
          "/Applications/Microsoft Edge.app/Contents/MacOS/Microsoft Edge",
          "/Applications/Firefox.app/Contents/MacOS/firefox"};
#else
  return {"chromium",       "chromium-browser",      "google-chrome", "google-chrome-stable",
          "microsoft-edge", "microsoft-edge-stable", "firefox"};
#endif
}

std::vector<std::string> chromium_options() {
  if (geteuid() == 0) return {"--no-sandbox"};
  return {};
}

}  // namespace vantorelix::cli
