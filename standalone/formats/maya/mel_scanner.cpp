#include "standalone/formats/maya/mel_scanner.h"

#include <string_view>

#include "base/number.h"

namespace vantorelix::standalone {
namespace {

constexpr std::size_t kMaxString = std::size_t{16} << 20;
constexpr std::size_t kMaxBare = 65536;

bool is_space(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool is_mark(char c) { return c == '(' || c == ')' || c == '{' || c == '}' || c == ','; }

}  // namespace

bool MelScanner::next_statement(Word& word) {
  while (next(word)) {
  }
  // Empty statements are nothing.
  for (skip_space_and_comments(); !in_.at_end() && in_.peek() == ';'; skip_space_and_comments()) in_.skip();
  if (in_.at_end()) return false;
  line_ = in_.line();
  inside_ = true;
  return next(word);
}

void MelScanner::put_back(const Word& word) {
  put_back_ = word;
  has_put_back_ = true;
}

bool MelScanner::next(Word& word) {
  if (has_put_back_) {
    has_put_back_ = false;
    word = put_back_;
    return true;
  }
  if (!inside_) return false;
  skip_space_and_comments();
  if (in_.at_end()) {
    in_.fail(line_, "the file ends inside this statement; it is cut off, copy or export it again");
  }
  if (in_.peek() == ';') {
    in_.skip();
    inside_ = false;
    return false;
  }
  word.is_string = in_.peek() == '"';
  word.text.clear();
  if (word.is_string) {
    read_string(word);
  } else {
    read_bare(word);
  }
  return true;
}

void MelScanner::skip_space_and_comments() {
  while (!in_.at_end()) {
    if (is_space(in_.peek())) {
      in_.skip();
    } else if (in_.peek() == '/') {
      in_.ready();
      const bool comment = in_.end() - in_.begin() > 1 && (in_.begin()[1] == '/' || in_.begin()[1] == '*');
      if (!comment) return;
      skip_comment();
    } else {
      return;
    }
  }
}

void MelScanner::skip_comment() {
  const std::size_t line = in_.line();
  in_.skip();
  const bool to_line_end = in_.peek() == '/';
  in_.skip();
  in_.ready();
  const std::string_view text(in_.begin(), static_cast<std::size_t>(in_.end() - in_.begin()));
  has_closing_line_ |= to_line_end && text.starts_with(" End of ");
  bool star = false;
  while (!in_.at_end()) {
    const char c = in_.peek();
    if (to_line_end && (c == '\n' || c == '\r')) return;
    in_.skip();
    if (!to_line_end && star && c == '/') return;
    star = c == '*';
  }
  if (!to_line_end) in_.fail(line, "the comment that begins here has no end; add '*/' or export again");
}

void MelScanner::read_string(Word& word) {
  const std::size_t line = in_.line();
  in_.skip();
  bool escaped = false;
  for (; !in_.at_end(); in_.skip()) {
    char c = in_.peek();
    if (!escaped && c == '"') {
      in_.skip();
      return;
    }
    if (!escaped && c == '\\') {
      escaped = true;
      continue;
    }
    if (escaped) c = c == 'n' ? '\n' : c == 't' ? '\t' : c == 'r' ? '\r' : c;
    escaped = false;
    if (word.text.size() == kMaxString) in_.fail(line, "a string of more than 16 MB; is this a Maya ASCII file?");
    word.text += c;
  }
  in_.fail(line, "the string that begins here has no end; the file is cut off, copy or export it again");
}

void MelScanner::read_bare(Word& word) {
  do {
    if (word.text.size() == kMaxBare) in_.fail("a word of more than 65536 bytes; is this a Maya ASCII file?");
    word.text += in_.peek();
    in_.skip();
    if (is_mark(word.text.back())) return;
  } while (!in_.at_end() && !is_space(in_.peek()) && !is_mark(in_.peek()) && in_.peek() != ';' && in_.peek() != '"');
}

bool MelScanner::next_number(double& value) {
  if (!next(number_)) return false;
  const std::string& text = number_.text;
  const char* const last = text.data() + text.size();
  if (!number_.is_string && !text.empty() && parse_number(text.data(), last, value) == last) return true;
  if (text == "on" || text == "yes" || text == "true") {
    value = 1.0;
  } else if (text == "off" || text == "no" || text == "false") {
    value = 0.0;
  } else {
    in_.fail(shown(text) + " stands where a number belongs; correct the statement or export again");
  }
  return true;
}

}  // namespace vantorelix::standalone
