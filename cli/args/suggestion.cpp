#include "cli/args/suggestion.h"

#include <algorithm>

namespace vantorelix::cli {

namespace {

std::size_t changes(const std::string& from, const std::string& to) {
  // Of each beginning of `from` to each beginning of `to`.
  std::vector<std::vector<std::size_t>> least(from.size() + 1, std::vector<std::size_t>(to.size() + 1));
  for (std::size_t i = 0; i <= from.size(); ++i)
    for (std::size_t k = 0; k <= to.size(); ++k) {
      if (i == 0 || k == 0) {
        least[i][k] = i + k;
        continue;
      }
      const std::size_t other = from[i - 1] == to[k - 1] ? 0 : 1;
      least[i][k] = std::min({least[i - 1][k] + 1, least[i][k - 1] + 1, least[i - 1][k - 1] + other});
      if (i > 1 && k > 1 && from[i - 1] == to[k - 2] && from[i - 2] == to[k - 1])
        least[i][k] = std::min(least[i][k], least[i - 2][k - 2] + 1);
    }
  return least.back().back();
}

}  // namespace

std::optional<std::string> nearest_word(const std::string& word, const std::vector<std::string>& words) {
  constexpr std::size_t kLongest = 64;  // no word is longer, and what is compared with them may be a whole file
  if (word.size() > kLongest) return std::nullopt;
  std::optional<std::string> nearest;
  std::size_t least = std::min<std::size_t>(2, word.size() / 3) + 1;
  for (const std::string& each : words)
    if (const std::size_t needed = changes(word, each); needed < least) {
      least = needed;
      nearest = each;
    }
  return nearest;
}

}  // namespace vantorelix::cli
