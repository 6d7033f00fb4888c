// The words of a Maya ASCII file, one statement after another, without holding any statement whole.
#pragma once

#include <string>

#include "standalone/formats/text_input.h"

namespace vantorelix::standalone {

// A word as it stands, or the content of a string with its escapes resolved.
struct Word {
  std::string text;
  bool is_string = false;

  // "-type", "-s": what asks for something, as against "-3" and "-.5".
  bool is_flag() const {
    return !is_string && text.size() > 1 && text[0] == '-' &&
           ((text[1] >= 'a' && text[1] <= 'z') || (text[1] >= 'A' && text[1] <= 'Z'));
  }
};

// Statements end at ";". Comments are "//" to the end of the line and "/* */". Parentheses, braces, commas and a "+"
// between strings are words of their own.
class MelScanner {
 public:
  explicit MelScanner(TextInput& input) : in_(input) {}

  // Goes to the first word of the next statement, past whatever is left of this one. False at the end of the file.
  // Throws FormatError for a statement that the file's end cuts off.
  bool next_statement(Word& word);
  // The next word of this statement; false where it ends, and then again and again.
  bool next(Word& word);
  // Gives a word back, to be the next one again. One at a time.
  void put_back(const Word& word);
  // Reads a number or a switch word (on, yes, true: 1; off, no, false: 0); false where the statement ends. Anything
  // else throws FormatError.
  bool next_number(double& value);

  // Whether a comment "// End of ..." came by, the last line of what Maya writes.
  bool has_closing_line() const { return has_closing_line_; }

  // The line where the statement began.
  std::size_t line() const { return line_; }
  TextInput& input() { return in_; }

 private:
  void skip_space_and_comments();
  void skip_comment();
  void read_string(Word& word);
  void read_bare(Word& word);

  TextInput& in_;
  Word number_;
  Word put_back_;
  bool has_put_back_ = false;
  std::size_t line_ = 1;
  bool inside_ = false;
  bool has_closing_line_ = false;
};

}  // namespace vantorelix::standalone
