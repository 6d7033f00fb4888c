#include "base/paths.h"

#include <algorithm>
#include <vector>

namespace vantorelix::paths {

namespace {

bool is_separator(char c, const Rules& rules) { return c == rules.separator || (rules.windows && c == '/'); }

// Position of the first separator at or after `from`; npos where there is none.
std::size_t find_separator(const std::string& path, std::size_t from, const Rules& rules) {
  while (from < path.size() && !is_separator(path[from], rules)) ++from;
  return from < path.size() ? from : std::string::npos;
}

// Length of what stands before the root: "C:" or "\\host\share"; 0 elsewhere.
std::size_t drive_length(const std::string& path, const Rules& rules) {
  if (!rules.windows || path.size() < 2) return 0;
  if (path[1] == ':') return 2;
  const bool share =
      path.size() > 2 && is_separator(path[0], rules) && is_separator(path[1], rules) && !is_separator(path[2], rules);
  if (!share) return 0;
  const std::size_t host_end = find_separator(path, 2, rules);
  if (host_end == std::string::npos || find_separator(path, host_end + 1, rules) == host_end + 1) return 0;
  return std::min(find_separator(path, host_end + 1, rules), path.size());
}

struct Split {
  std::string drive;
  std::string rest;
};

Split split_drive(const std::string& path, const Rules& rules) {
  const std::size_t length = drive_length(path, rules);
  return {path.substr(0, length), path.substr(length)};
}

bool starts_with_separator(const std::string& path, const Rules& rules) {
  return !path.empty() && is_separator(path.front(), rules);
}

// Two separators, and not three, are a root of their own on POSIX.
std::size_t root_length(const std::string& rest, const Rules& rules) {
  if (!starts_with_separator(rest, rules)) return 0;
  const bool two = rest.size() >= 2 && rest[1] == '/' && (rest.size() == 2 || rest[2] != '/');
  return !rules.windows && two ? 2 : 1;
}

std::vector<std::string> components(const std::string& rest, const Rules& rules) {
  std::vector<std::string> found;
  std::size_t from = 0;
  while (from <= rest.size()) {
    const std::size_t to = std::min(find_separator(rest, from, rules), rest.size());
    if (to > from) found.push_back(rest.substr(from, to - from));
    from = to + 1;
  }
  return found;
}

}  // namespace

std::string join(const std::string& head, const std::string& tail, const Rules& rules) {
  const Split left = split_drive(head, rules);
  const Split right = split_drive(tail, rules);
  if (starts_with_separator(right.rest, rules)) return (right.drive.empty() ? left.drive : right.drive) + right.rest;
  if (!right.drive.empty() && lower(right.drive) != lower(left.drive)) return tail;
  const std::string drive = right.drive.empty() ? left.drive : right.drive;
  std::string rest = left.rest;
  if (!rest.empty() && !is_separator(rest.back(), rules)) rest += rules.separator;
  rest += right.rest;
  const bool share_without_root =
      !rest.empty() && !is_separator(rest.front(), rules) && !drive.empty() && drive.back() != ':';
  return share_without_root ? drive + rules.separator + rest : drive + rest;
}

std::string directory_name(const std::string& path, const Rules& rules) {
  const auto [drive, rest] = split_drive(path, rules);
  std::size_t end = rest.size();
  while (end > 0 && !is_separator(rest[end - 1], rules)) --end;
  std::size_t trimmed = end;
  while (trimmed > 0 && is_separator(rest[trimmed - 1], rules)) --trimmed;
  return drive + rest.substr(0, trimmed > 0 ? trimmed : end);
}

std::string normalised(const std::string& path, const Rules& rules) {
  const auto [drive, rest] = split_drive(path, rules);
  const std::size_t root = root_length(rest, rules);
  std::vector<std::string> kept;
  for (const std::string& component : components(rest, rules)) {
    if (component == ".") continue;
    const bool climbs = component == "..";
    if (climbs && !kept.empty() && kept.back() != "..") {
      kept.pop_back();
    } else if (!climbs || root == 0) {
      kept.push_back(component);
    }
  }
  std::string result = drive;
  if (rules.windows) std::replace(result.begin(), result.end(), '/', rules.separator);
  result.append(root, rules.separator);
  for (std::size_t i = 0; i < kept.size(); ++i) result += (i ? std::string(1, rules.separator) : "") + kept[i];
  return result.empty() ? "." : result;
}

std::string absolute(const std::string& path) {
  const std::u8string current = std::filesystem::current_path().u8string();
  return normalised(join(std::string(current.begin(), current.end()), path));
}

std::string forward_slashes(std::string path) {
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

std::string lower(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

std::filesystem::path file(const std::string& path) { return std::u8string(path.begin(), path.end()); }

}  // namespace vantorelix::paths
