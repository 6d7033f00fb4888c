#include "base/pattern.h"

#include <algorithm>

#include "base/utf8.h"

namespace vantorelix {

bool matches(std::string_view pattern, std::string_view text) {
  std::size_t p = 0, t = 0, star = std::string_view::npos, resume = 0;
  while (t < text.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      resume = t;
    } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == text[t])) {
      ++p, ++t;
    } else if (star != std::string_view::npos) {
      p = star + 1;
      t = ++resume;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*') ++p;
  return p == pattern.size();
}

namespace {

constexpr char32_t kBar = U'|';
// Beyond all characters: the bytes that are none, and a bar that is a part of a name.
constexpr char32_t kByte = 0x110000;
constexpr char32_t kBarInName = kByte + kBar;

void decode(std::string_view text, std::vector<char32_t>& codes) {
  codes.clear();
  while (!text.empty()) {
    const Utf8Piece piece = utf8_piece(text);
    if (piece.valid)
      codes.push_back(piece.code);
    else
      for (std::size_t i = 0; i < piece.size; ++i) codes.push_back(kByte + static_cast<unsigned char>(text[i]));
    text.remove_prefix(piece.size);
  }
}

char32_t lower(char32_t code) { return code >= U'A' && code <= U'Z' ? code - U'A' + U'a' : code; }
char32_t upper(char32_t code) { return code >= U'a' && code <= U'z' ? code - U'a' + U'A' : code; }

}  // namespace

struct PathPattern::Token {
  enum class Kind { character, any, set, star, deep, levels, open, comma, close };
  Kind kind;
  char32_t code = 0;
  std::size_t set = 0;
};

// Makes steps of tokens, last token first.
class PathPattern::Compiler {
 public:
  explicit Compiler(std::vector<Step>& steps) : steps_(steps) {}

  void add(const Token& token) {
    using Kind = Token::Kind;
    switch (token.kind) {
      case Kind::character:
        return put({Step::Kind::character, token.code});
      case Kind::any:
        return put({Step::Kind::any});
      case Kind::set:
        return put({Step::Kind::set, 0, token.set});
      case Kind::star:
        return repeat(Step::Kind::any);
      case Kind::deep:
        return repeat(Step::Kind::anything);
      case Kind::levels:
        return add_levels();
      case Kind::close:
        groups_.emplace_back();
        return begin_alternative();
      case Kind::comma:
        end_alternative();
        steps_[groups_.back().fork].other = steps_.size();
        return begin_alternative();
      case Kind::open:
        end_alternative();
        for (const std::size_t end : groups_.back().ends) point(end, steps_.size());
        return groups_.pop_back();
    }
  }
  void finish() { put({Step::Kind::found}); }

 private:
  struct Group {
    std::size_t fork = 0;           // before the present alternative
    std::vector<std::size_t> ends;  // of the alternatives
  };

  void put(const Step& step) { steps_.push_back(step); }
  // Both ways of a fork lead there.
  void point(std::size_t fork, std::size_t to) { steps_[fork].way = steps_[fork].other = to; }
  std::size_t put_fork() {
    put({Step::Kind::fork});
    return steps_.size() - 1;
  }

  void repeat(Step::Kind kind) {
    const std::size_t fork = put_fork();
    put({kind});
    point(put_fork(), fork);
    steps_[fork].way = fork + 1;
    steps_[fork].other = steps_.size();
  }

  // A bar and whatever stands before it, or nothing.
  void add_levels() {
    const std::size_t fork = put_fork();
    put({Step::Kind::character, kBar});
    repeat(Step::Kind::anything);
    steps_[fork].way = fork + 1;
    steps_[fork].other = steps_.size();
  }

  void begin_alternative() {
    Group& group = groups_.back();
    group.fork = put_fork();
    point(group.fork, steps_.size());
  }

  void end_alternative() {
    const std::size_t end = put_fork();
    groups_.back().ends.push_back(end);
  }

  std::vector<Step>& steps_;
  std::vector<Group> groups_;
};

// All the ways through the steps at once, one character after the other.
class PathPattern::Run {
 public:
  explicit Run(const PathPattern& pattern) : pattern_(pattern), seen_(pattern.steps_.size(), 0) {
    ++round_;
    enter(0);
  }

  void take(char32_t code) {
    before_.swap(now_);
    now_.clear();
    found_ = false;
    ++round_;
    for (const std::size_t step : before_)
      if (pattern_.accepts(pattern_.steps_[step], code)) enter(step + 1);
  }
  bool found() const { return found_; }
  bool over() const { return now_.empty() && !found_; }

 private:
  void enter(std::size_t first) {
    open_.assign(1, first);
    while (!open_.empty()) {
      const std::size_t at = open_.back();
      open_.pop_back();
      if (seen_[at] == round_) continue;
      seen_[at] = round_;
      const Step& step = pattern_.steps_[at];
      if (step.kind == Step::Kind::found)
        found_ = true;
      else if (step.kind != Step::Kind::fork)
        now_.push_back(at);
      else
        open_.insert(open_.end(), {step.other, step.way});
    }
  }

  const PathPattern& pattern_;
  std::vector<std::size_t> now_, before_, open_;
  std::vector<std::size_t> seen_;  // in which round each step was entered
  std::size_t round_ = 0;
  bool found_ = false;
};

PathPattern::PathPattern(std::string_view pattern, bool ignore_case) : ignore_case_(ignore_case) {
  std::vector<char32_t> codes;
  decode(pattern, codes);
  const std::vector<Token> found = tokens(codes);
  Compiler compiler(steps_);
  for (auto token = found.rbegin(); token != found.rend(); ++token) compiler.add(*token);
  compiler.finish();
}

PathPattern PathPattern::literal(std::string_view text, bool ignore_case) {
  PathPattern pattern;
  pattern.ignore_case_ = ignore_case;
  std::vector<char32_t> codes;
  decode(text, codes);
  Compiler compiler(pattern.steps_);
  for (auto code = codes.rbegin(); code != codes.rend(); ++code) compiler.add({Token::Kind::character, *code});
  compiler.finish();
  return pattern;
}

std::vector<PathPattern::Token> PathPattern::tokens(const std::vector<char32_t>& codes) {
  using Kind = Token::Kind;
  std::vector<Token> found;
  std::size_t open = 0;  // braces
  const auto is = [&](std::size_t at, char32_t code) { return at < codes.size() && codes[at] == code; };
  for (std::size_t i = 0; i < codes.size(); ++i) {
    if (is(i, U'*') && is(i + 1, U'*')) {
      deep_ = true;
      const bool whole_name = i == 0 || is(i - 1, kBar);
      const bool levels = whole_name && is(i + 2, kBar);
      found.push_back({levels ? Kind::levels : Kind::deep});
      i += levels ? 2 : 1;
    } else if (is(i, U'*')) {
      found.push_back({Kind::star});
    } else if (is(i, U'?')) {
      found.push_back({Kind::any});
    } else if (is(i, U'[')) {
      i = read_set(codes, i);
      found.push_back({Kind::set, 0, sets_.size() - 1});
    } else if (is(i, U'{')) {
      ++open;
      found.push_back({Kind::open});
    } else if (is(i, U'}')) {
      if (open-- == 0) throw PatternError("its '}' closes nothing");
      found.push_back({Kind::close});
    } else if (is(i, U',') && open != 0) {
      found.push_back({Kind::comma});
    } else {
      found.push_back({Kind::character, codes[i]});
    }
  }
  if (open != 0) throw PatternError("its '{' is not closed");
  return found;
}

std::size_t PathPattern::read_set(const std::vector<char32_t>& codes, std::size_t at) {
  Set set;
  std::size_t i = at + 1;
  set.negated = i < codes.size() && codes[i] == U'!';
  if (set.negated) ++i;
  // A bracket that would leave the set empty is a member of it.
  for (const std::size_t first = i; i < codes.size() && (codes[i] != U']' || i == first); ++i) {
    const char32_t low = codes[i];
    const bool range = i + 2 < codes.size() && codes[i + 1] == U'-' && codes[i + 2] != U']';
    if (range) i += 2;
    if (codes[i] < low) throw PatternError("a range between '[' and ']' ends before it begins");
    set.ranges.emplace_back(low, codes[i]);
  }
  if (i >= codes.size()) throw PatternError("its '[' is not closed");
  sets_.push_back(set);
  return i;
}

bool PathPattern::accepts(const Step& step, char32_t code) const {
  if (step.kind == Step::Kind::anything) return true;
  const char32_t inside = code == kBarInName ? kBar : code;
  if (step.kind == Step::Kind::character)
    return inside == step.code || (ignore_case_ && lower(inside) == lower(step.code));
  if (code == kBar) return false;
  if (step.kind == Step::Kind::any) return true;
  const Set& set = sets_[step.set];
  const auto holds = [&](char32_t member) {
    return std::any_of(set.ranges.begin(), set.ranges.end(),
                       [&](const auto& range) { return member >= range.first && member <= range.second; });
  };
  const bool held = ignore_case_ ? holds(lower(inside)) || holds(upper(inside)) : holds(inside);
  return held != set.negated;
}

bool PathPattern::matches(const Names& names) const {
  Run run(*this);
  std::vector<char32_t> codes;
  for (auto name = names(); name && !run.over();) {
    decode(*name, codes);
    for (auto code = codes.rbegin(); code != codes.rend() && !run.over(); ++code)
      run.take(*code == kBar ? kBarInName : *code);
    if (run.found()) return true;
    name = names();
    run.take(kBar);
    if (!name) return run.found();
  }
  return false;
}

}  // namespace vantorelix
