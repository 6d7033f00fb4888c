// Patterns of names.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vantorelix {

// Whether a pattern of "*" (any bytes) and "?" (one byte) stands for the whole text. Takes at most their lengths'
// product in steps.
bool matches(std::string_view pattern, std::string_view text);

// Why a text is not a valid pattern: "its '[' is not closed".
struct PatternError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// A pattern of paths such as "|arm|hand|thumb":
//   *         any characters but a bar             [abc]    one of these characters, [a-z] one of a range
//   ?         one character but a bar              [!abc]   one character that is none of these
//   **        any characters, bars too             {a,b}    one of these patterns, which may be empty
//   a|**|b    b below a, with any number of names between them, or none
// A pattern that does not begin with a bar stands for what a path ends with: "thumb", "hand|thumb". Nothing but these
// has a meaning of its own: "[[]" stands for a bracket, "[{]" for a brace, "[*]" for a star.
class PathPattern {
 public:
  // Hands out the names of a path, the last one first, and then nothing. What it hands out is used until it is called
  // again.
  using Names = std::function<std::optional<std::string_view>()>;

  // Characters are those of UTF-8; a byte that is not UTF-8 counts as one. With `ignore_case` the letters A to Z of
  // ASCII are as good as a to z. Throws PatternError.
  explicit PathPattern(std::string_view pattern, bool ignore_case = false);
  // Of a text whose characters stand for themselves.
  static PathPattern literal(std::string_view text, bool ignore_case = false);

  // Takes at most about the product of the two lengths in steps, whatever the pattern.
  bool matches(const Names& names) const;

  // Whether it crosses bars by "**".
  bool deep() const { return deep_; }

 private:
  struct Set {
    bool negated = false;
    std::vector<std::pair<char32_t, char32_t>> ranges;  // both ends belong to them
  };
  struct Token;
  class Compiler;
  class Run;
  // What is to be done next; where a kind has one way on only, it is the following step.
  struct Step {
    enum class Kind { character, any, anything, set, fork, found };
    Kind kind;
    char32_t code = 0;               // of a character
    std::size_t set = 0;             // number of the set
    std::size_t way = 0, other = 0;  // of a fork
  };

  PathPattern() = default;
  std::vector<Token> tokens(const std::vector<char32_t>& codes);
  // Reads a set that begins at `at`, and hands back where it ends.
  std::size_t read_set(const std::vector<char32_t>& codes, std::size_t at);
  bool accepts(const Step& step, char32_t code) const;

  std::vector<Step> steps_;  // for a path that is read backwards
  std::vector<Set> sets_;
  bool ignore_case_ = false;
  bool deep_ = false;
};

}  // namespace vantorelix
