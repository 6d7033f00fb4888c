// Path arithmetic on texts, with the results that the host's scripting language gives on each platform.
#pragma once

#include <filesystem>
#include <string>

namespace vantorelix::paths {

// What differs between platforms. Every function below takes the running platform's rules unless told otherwise.
struct Rules {
  char separator;       // between the components of a path
  char list_separator;  // between the entries of a search path
  bool windows;         // "/" separates too; drive letters and network shares stand before the root
};

inline constexpr Rules kPosix{'/', ':', false};
inline constexpr Rules kWindows{'\\', ';', true};
#ifdef _WIN32
inline constexpr Rules kNative = kWindows;
#else
inline constexpr Rules kNative = kPosix;
#endif

// An absolute tail replaces the head; an empty head gives the tail.
std::string join(const std::string& head, const std::string& tail, const Rules& rules = kNative);
// What stands before the last separator, without trailing separators unless it is nothing but a root.
std::string directory_name(const std::string& path, const Rules& rules = kNative);
// "." for the empty path; keeps no ".", no doubled separator, and ".." only where nothing stands before it.
std::string normalised(const std::string& path, const Rules& rules = kNative);
// Normalised, against the current folder. Throws where the current folder cannot be read.
std::string absolute(const std::string& path);

std::string forward_slashes(std::string path);
// ASCII letters only.
std::string lower(std::string text);

// A text as a path of the file system: texts are UTF-8 on every platform.
std::filesystem::path file(const std::string& path);

}  // namespace vantorelix::paths
