// What somebody may have meant by a word that is not known.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vantorelix::cli {

// The one of the words that takes the fewest changes to get from `word`: a letter that is added, left out or another
// one, or two neighbours that change places (the optimal string alignment distance). Nothing where more than a third of
// the word would change, and at most two letters.
std::optional<std::string> nearest_word(const std::string& word, const std::vector<std::string>& words);

}  // namespace vantorelix::cli
