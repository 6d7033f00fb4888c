// JSON text that is changed in places, while the rest of it keeps its bytes. For the files of this folder only.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantorelix::standalone {

class JsonText {
 public:
  // Where a value lies.
  struct Span {
    std::size_t begin, end;
  };

  // `text` is JSON that was read without a fault: an object, with any blanks around it.
  explicit JsonText(std::string_view text);

  Span root() const { return root_; }
  // The value of a member; nothing where there is none. Throws CannotWrite where two members have the name, or one that
  // writes it with escapes.
  std::optional<Span> member(Span object, std::string_view name) const;
  std::vector<Span> elements(Span list) const;

  // These are done in `changed`; what one replaces or removes, no other may touch. Places stay those of the first text.
  void replace(Span value, std::string text);
  void remove_member(Span object, std::string_view name);
  // Behind what a list or an object holds; of an object, with its name.
  void append(Span container, const std::string& text);

  std::string changed() const;

 private:
  struct Change {
    std::size_t end;
    std::string text;
  };
  struct Member {
    std::size_t begin;  // of its name
    Span value;
  };

  std::size_t skip_blanks(std::size_t at) const;
  std::size_t end_of_string(std::size_t at) const;
  std::size_t end_of_value(std::size_t at) const;
  std::vector<Member> members(Span object, std::string_view name) const;

  std::string_view text_;
  Span root_;
  std::multimap<std::size_t, Change> changes_;
};

}  // namespace vantorelix::standalone
