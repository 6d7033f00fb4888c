#include "cli/terminal/screenshot.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string_view>
#include <vector>

#include "base/paths.h"
#include "cli/terminal/browser.h"
#include "cli/terminal/failure.h"
#include "cli/terminal/interrupt.h"
#include "cli/terminal/private_folder.h"
#include "cli/terminal/process.h"

namespace vantorelix::cli {

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::seconds kLimit(60);
constexpr const char* kRemedy =
    "name a Chromium, Chrome, Edge or Firefox in the variable BROWSER, or write a .svg, which needs none";

struct Shot {
  fs::path folder;
  int width, height;
  fs::path page() const { return folder / "picture.html"; }
  fs::path picture() const { return folder / "picture.png"; }
};

// Gone with all that it holds; a browser may still be putting its things away.
class Folder {
 public:
  explicit Folder(fs::path path) : path_(std::move(path)) {}
  ~Folder() {
    std::error_code error;
    fs::remove_all(path_, error);
    if (error) fs::remove_all(path_, error);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

 private:
  fs::path path_;
};

std::string lower_name(const std::string& program) {
  std::string name = fs::path(program).filename().string();
  std::transform(name.begin(), name.end(), name.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return name;
}

bool is_firefox(const std::string& program) { return lower_name(program).find("firefox") != std::string::npos; }

bool is_known(const std::string& program) {
  const std::string name = lower_name(program);
  return is_firefox(program) || name.find("chrom") != std::string::npos || name.find("edge") != std::string::npos;
}

std::vector<std::string> browsers() {
  std::vector<std::string> all;
  const char* named = std::getenv("BROWSER");
  std::istringstream stream(named == nullptr ? "" : named);
  for (std::string one; std::getline(stream, one, paths::kNative.list_separator);) {
    std::string program;
    if (std::istringstream(one) >> program && is_known(program)) all.push_back(program);
  }
  for (std::string& place : installed_browsers()) all.push_back(std::move(place));
  return all;
}

std::vector<std::string> command(const std::string& program, const Shot& shot) {
  const std::string size = std::to_string(shot.width) + "," + std::to_string(shot.height);
  const std::string profile = (shot.folder / "profile").string(), picture = shot.picture().string();
  const std::string address = file_address(fs::absolute(shot.page()));
  if (is_firefox(program))
    return {program,         "--headless", "--no-remote",  "--profile", profile,
            "--window-size", size,         "--screenshot", picture,     address};
  std::vector<std::string> words = {program,
                                    "--headless",
                                    "--disable-gpu",
                                    "--hide-scrollbars",
                                    "--no-first-run",
                                    "--no-default-browser-check",
                                    "--disable-background-networking",
                                    "--force-device-scale-factor=1",
                                    "--user-data-dir=" + profile,
                                    "--window-size=" + size,
                                    "--screenshot=" + picture};
  for (std::string& option : chromium_options()) words.push_back(std::move(option));
  words.push_back(address);
  return words;
}

// Whether it ended well in time.
bool runs(const std::vector<std::string>& words) {
  Process process(words);
  for (auto waited = std::chrono::milliseconds(0); waited < kLimit; waited += std::chrono::milliseconds(100)) {
    if (const auto ended = process.wait(std::chrono::milliseconds(100))) return *ended;
    if (interrupted()) break;
  }
  process.end();
  return false;
}

std::string content_of(const fs::path& file) {
  std::ostringstream content;
  content << std::ifstream(file, std::ios::binary).rdbuf();
  return content.str();
}

// The number of four bytes from a place on, the largest first.
long number_at(std::string_view bytes, std::size_t place) {
  long value = 0;
  for (std::size_t i = 0; i < 4; ++i) value = value * 256 + static_cast<unsigned char>(bytes[place + i]);
  return value;
}

// Whether it is a complete PNG file of the size: it begins with its sign and size and ends with its last chunk.
bool is_picture(std::string_view bytes, const Shot& shot) {
  constexpr std::string_view kSign = "\x89PNG\r\n\x1a\n", kEnd = "IEND\xae\x42\x60\x82";
  return bytes.size() > 24 && bytes.starts_with(kSign) && bytes.ends_with(kEnd) && number_at(bytes, 16) == shot.width &&
         number_at(bytes, 20) == shot.height;
}

}  // namespace

std::string png_of(const std::string& svg, int width, int height) {
  const Shot shot{make_private_folder("write a .svg, which needs none"), width, height};
  const Folder folder(shot.folder);
  std::ofstream(shot.page(), std::ios::binary)
      << "<!DOCTYPE html><meta charset=\"utf-8\"><style>html,body{margin:0}svg{display:block}</style>" << svg;
  for (const std::string& program : browsers()) {
    const bool done = runs(command(program, shot));
    check_interrupt();
    std::string picture = done ? content_of(shot.picture()) : "";
    if (is_picture(picture, shot)) return picture;
  }
  throw Failure(std::string("no browser could be found that turns a picture into a .png; ") + kRemedy);
}

}  // namespace vantorelix::cli
