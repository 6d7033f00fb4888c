#include "cli/args/suggestion.h"

#include <gtest/gtest.h>

namespace vantorelix::cli {
namespace {

const std::vector<std::string> kWords{"trails", "view", "info", "curves", "live"};

TEST(Suggestion, IsTheWordThatTakesTheFewestChanges) {
  EXPECT_EQ(nearest_word("trials", kWords), "trails");  // two neighbours
  EXPECT_EQ(nearest_word("trail", kWords), "trails");
  EXPECT_EQ(nearest_word("veiw", kWords), "view");
  EXPECT_EQ(nearest_word("curvess", kWords), "curves");
  EXPECT_EQ(nearest_word("lime", kWords), "live");
}

TEST(Suggestion, IsNothingWhereMoreThanAThirdWouldChange) {
  for (const char* word : {"", "v", "paint", "vu", "xcurvyz"})
    EXPECT_EQ(nearest_word(word, kWords), std::nullopt) << word;
  EXPECT_EQ(nearest_word(std::string(1'000'000, 'x'), kWords), std::nullopt);
}

}  // namespace
}  // namespace vantorelix::cli
