// Path arithmetic on texts, with the results that the host's scripting language gives.
#pragma once

#include <string>

namespace vantorelix::paths {

extern const char kSeparator;      // between the components of a path
extern const char kListSeparator;  // between the entries of a search path

std::string join(const std::string& head, const std::string& tail);  // an absolute tail replaces the head
std::string directory_name(const std::string& path);
std::string normalised(const std::string& path);  // "." for the empty path; keeps no "..", "." or doubled separator
std::string absolute(const std::string& path);    // normalised, against the current folder
std::string forward_slashes(std::string path);
std::string lower(std::string text);

}  // namespace vantorelix::paths
