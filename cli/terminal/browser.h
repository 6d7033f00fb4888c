// Showing a file in the user's browser.
#pragma once

#include <filesystem>
#include <string>

namespace vantorelix::cli {

// Starts a browser on a file and does not wait for it; false when none can be started. The variable BROWSER names
// browsers to try, separated by colons: words separated by blanks, of which %s becomes the address (it comes last where
// no word has it). Without the variable it is the system's own way to open files. No shell reads any of it.
bool open_in_browser(const std::filesystem::path& file);

// The file: address of an absolute path.
std::string file_address(const std::filesystem::path& file);

}  // namespace vantorelix::cli
