#include "cli/output/columns.h"

#include <algorithm>

#include "cli/output/text.h"

namespace vantorelix::cli {

std::string columns(const std::vector<std::vector<std::string>>& rows, const std::vector<bool>& right) {
  std::vector<std::size_t> widths(right.size(), 0);
  for (const auto& row : rows)
    for (std::size_t c = 0; c < row.size(); ++c) widths[c] = std::max(widths[c], width(row[c]));
  std::string out;
  for (const auto& row : rows) {
    std::string line;
    for (std::size_t c = 0; c < row.size(); ++c) {
      const std::string padding(widths[c] - width(row[c]), ' ');
      if (c != 0) line += "  ";
      line += right[c] ? padding + row[c] : row[c] + padding;
    }
    out += line.substr(0, line.find_last_not_of(' ') + 1) + '\n';
  }
  return out;
}

}  // namespace vantorelix::cli
