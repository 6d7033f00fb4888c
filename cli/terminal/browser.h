// Showing a file in the user's browser.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vantorelix::cli {

// Starts a browser on a file and does not wait for it; false when none can be started. The variable BROWSER names
// browsers to try, separated by colons: words separated by blanks, of which %s becomes the address (it comes last where
// no word has it). Without the variable, and on Windows, it is the system's own way to open files. No shell reads any
// of it.
bool open_in_browser(const std::filesystem::path& file);

// The file: address of an absolute path.
std::string file_address(const std::filesystem::path& file);

// Browsers that can make a picture of a page, by the names or paths at which this system may have them.
std::vector<std::string> installed_browsers();
// What a Chromium has to be told on this system and by this user. For the superuser it starts only without its sandbox;
// the pages are our own and have no script.
std::vector<std::string> chromium_options();

}  // namespace vantorelix::cli
