#include "cli/terminal/browser.h"

#include <string_view>

namespace vantorelix::cli {

std::string file_address(const std::filesystem::path& file) {
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

}  // namespace vantorelix::cli
