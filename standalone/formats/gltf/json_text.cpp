#include "standalone/formats/gltf/json_text.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "standalone/formats/writer.h"

namespace vantorelix::standalone {

JsonText::JsonText(std::string_view text) : text_(text), root_{skip_blanks(0), 0} {
  root_.end = end_of_value(root_.begin);
}

std::size_t JsonText::skip_blanks(std::size_t at) const {
  const std::size_t next = text_.find_first_not_of(" \t\r\n", at);
  return next == std::string_view::npos ? text_.size() : next;
}

std::size_t JsonText::end_of_string(std::size_t at) const {
  for (++at; at < text_.size() && text_[at] != '"'; ++at)
    if (text_[at] == '\\') ++at;
  return at + 1;
}

std::size_t JsonText::end_of_value(std::size_t at) const {
  if (text_[at] == '"') return end_of_string(at);
  if (text_[at] != '{' && text_[at] != '[') return std::min(text_.find_first_of(",]} \t\r\n", at), text_.size());
  std::size_t depth = 0;
  while (at < text_.size()) {
    const char c = text_[at];
    if (c == '"') {
      at = end_of_string(at);
      continue;
    }
    ++at;
    if (c == '{' || c == '[') ++depth;
    if ((c == '}' || c == ']') && --depth == 0) break;
  }
  return at;
}

std::vector<JsonText::Member> JsonText::members(Span object, std::string_view name) const {
  std::vector<Member> found;
  for (std::size_t at = skip_blanks(object.begin + 1); at < object.end && text_[at] == '"';) {
    const std::size_t named = end_of_string(at);
    const std::size_t begin = skip_blanks(skip_blanks(named) + 1), end = end_of_value(begin);
    const std::string_view own = text_.substr(at + 1, named - at - 2);
    if (own == name) found.push_back({at, {begin, end}});
    // Not every reader takes such a name for this one.
    if (own.find('\\') != std::string_view::npos && nlohmann::json::parse(text_.substr(at, named - at)) == name)
      throw CannotWrite("the file's JSON has escapes in the name of '" + std::string(name) + "'; export it again");
    at = skip_blanks(end);
    if (text_[at] == ',') at = skip_blanks(at + 1);
  }
  if (found.size() > 1)
    throw CannotWrite("the file's JSON has two members '" + std::string(name) + "' in one object; export it again");
  return found;
}

std::optional<JsonText::Span> JsonText::member(Span object, std::string_view name) const {
  const std::vector<Member> found = members(object, name);
  return found.empty() ? std::nullopt : std::optional(found.front().value);
}

std::vector<JsonText::Span> JsonText::elements(Span list) const {
  std::vector<Span> found;
  for (std::size_t at = skip_blanks(list.begin + 1); at + 1 < list.end;) {
    found.push_back({at, end_of_value(at)});
    at = skip_blanks(found.back().end);
    if (text_[at] == ',') at = skip_blanks(at + 1);
  }
  return found;
}

void JsonText::replace(Span value, std::string text) {
  changes_.emplace(value.begin, Change{value.end, std::move(text)});
}

void JsonText::remove_member(Span object, std::string_view name) {
  for (const Member& member : members(object, name)) {
    std::size_t begin = member.begin, end = skip_blanks(member.value.end);
    if (text_[end] == ',')
      ++end;
    else
      for (end = member.value.end; begin > object.begin + 1 && text_[begin] != ','; --begin) continue;
    replace({begin, end}, "");
  }
}

void JsonText::append(Span container, const std::string& text) {
  const bool empty = skip_blanks(container.begin + 1) == container.end - 1;
  const bool first = changes_.count(container.end - 1) == 0;
  replace({container.end - 1, container.end - 1}, (empty && first ? "" : ",") + text);
}

std::string JsonText::changed() const {
  std::string result;
  std::size_t at = 0;
  for (const auto& [begin, change] : changes_) {
    result += text_.substr(at, begin - at);
    result += change.text;
    at = change.end;
  }
  return result.append(text_.substr(at));
}

}  // namespace vantorelix::standalone
