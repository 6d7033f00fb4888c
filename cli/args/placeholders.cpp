#include "cli/args/placeholders.h"

#include <filesystem>

namespace vantorelix::cli {

std::string fill_in(const std::string& output, const std::string& scene) {
  const std::filesystem::path path(scene);
  const std::string extension = path.extension().string();
  const struct {
    std::string name, value;
  } placeholders[] = {{"{stem}", path.stem().string()},
                      {"{name}", path.filename().string()},
                      {"{ext}", extension.substr(extension.empty() ? 0 : 1)}};
  std::string filled;
  for (std::size_t at = 0; at < output.size();) {
    std::size_t taken = 1;
    std::string value(1, output[at]);
    for (const auto& each : placeholders)
      if (output.compare(at, each.name.size(), each.name) == 0) {
        taken = each.name.size();
        value = each.value;
      }
    filled += value;
    at += taken;
  }
  return filled;
}

bool names_scene(const std::string& output) { return fill_in(output, "a.b") != fill_in(output, "c.b"); }

}  // namespace vantorelix::cli
