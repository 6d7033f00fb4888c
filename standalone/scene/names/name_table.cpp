#include "standalone/scene/names/name_table.h"

#include <algorithm>

namespace vantorelix::standalone {
namespace {

bool is_digit(char c) { return c >= '0' && c <= '9'; }
bool is_letter(char c) {
  const char lower = static_cast<char>(c | 0x20);
  return lower >= 'a' && lower <= 'z';
}

struct Numbered {
  std::string_view stem;
  std::size_t width = 0;  // digits that zeros fill up to; 0 where none lead
  std::uint64_t number = 0;
};

// More digits than these belong to the stem.
constexpr std::size_t kMaxDigits = 15;

Numbered split(std::string_view text) {
  std::size_t digits = 0;
  while (digits < text.size() && digits < kMaxDigits && is_digit(text[text.size() - 1 - digits])) ++digits;
  Numbered n;
  n.stem = text.substr(0, text.size() - digits);
  const std::string_view tail = text.substr(text.size() - digits);
  for (const char c : tail) n.number = n.number * 10 + static_cast<std::uint64_t>(c - '0');
  if (digits > 0 && tail[0] == '0') n.width = digits;
  return n;
}

std::string joined(std::string_view stem, std::size_t width, std::uint64_t number) {
  const std::string digits = std::to_string(number);
  std::string text(stem);
  text.append(digits.size() < width ? width - digits.size() : 0, '0');
  return text + digits;
}

std::string number_key(NodeId scope, std::size_t width, std::string_view stem) {
  std::string k = std::to_string(scope) + ' ' + std::to_string(width) + ' ';
  k.append(stem);
  return k;
}

}  // namespace

NameTable::Entry NameTable::find(std::string_view text) const {
  return by_text_.find(hash_of(text), [&](Entry name) { return entries_[name].text == text; });
}

NodeId NameTable::in_scope(NodeId scope, Entry name) const {
  return in_scope_.find(place_hash(scope, name),
                        [&](NodeId node) { return places_[node].scope == scope && places_[node].name == name; });
}

bool NameTable::taken(NodeId scope, std::string_view text) const {
  const Entry name = find(text);
  if (name == kNone) return false;
  return scope == kGlobalScope || entries_[name].global || in_scope(scope, name) != kNoNode;
}

std::string NameTable::free_name(NodeId scope, std::string wanted, bool everywhere) {
  const NodeId where = everywhere ? kGlobalScope : scope;
  if (!taken(where, wanted)) return wanted;
  const Numbered n = split(wanted);
  Run& run = runs_.try_emplace(number_key(where, n.width, n.stem), Run{n.number + 1, n.number + 1}).first->second;
  if (n.number + 1 < run.first || n.number + 1 > run.end) run = {n.number + 1, n.number + 1};
  std::string text = joined(n.stem, n.width, run.end);
  while (taken(where, text)) text = joined(n.stem, n.width, ++run.end);
  return text;
}

NameTable::Entry NameTable::add(NodeId scope, std::string_view text, NodeId node) {
  Entry name = find(text);
  if (name == kNone) {
    if (unused_.empty()) {
      name = static_cast<Entry>(entries_.size());
      entries_.emplace_back();
    } else {
      name = unused_.back();
      unused_.pop_back();
    }
    entries_[name].text = text;
    by_text_.insert(hash_of(text), name);
  }
  NameEntry& entry = entries_[name];
  if (places_.size() <= node) places_.resize(std::max<std::size_t>(node + std::size_t{1}, places_.size() * 2));
  places_[node] = {scope, name, static_cast<std::uint32_t>(entry.nodes.size())};
  entry.nodes.push_back(node);
  entry.global = scope == kGlobalScope;
  in_scope_.insert(place_hash(scope, name), node);
  return name;
}

void NameTable::remove(NodeId scope, Entry name, NodeId node) {
  NameEntry& entry = entries_[name];
  in_scope_.erase(place_hash(scope, name), node);
  const NodeId last = entry.nodes.back();
  entry.nodes[places_[node].in_nodes] = last;
  places_[last].in_nodes = places_[node].in_nodes;
  entry.nodes.pop_back();
  forget_numbers(scope, entry.text);
  if (scope != kGlobalScope) forget_numbers(kGlobalScope, entry.text);
  if (!entry.nodes.empty()) return;
  by_text_.erase(hash_of(entry.text), name);
  entry = NameEntry{};
  unused_.push_back(name);
}

void NameTable::forget_numbers(NodeId scope, std::string_view text) {
  if (runs_.empty()) return;
  const Numbered n = split(text);
  const std::size_t digits = text.size() - n.stem.size();
  // "a07" is number 7 at width 2 only; "a17" is number 17 at width 0, 1 and 2, and may be in the run of each.
  for (std::size_t width = n.width; width <= digits; ++width) {
    const auto found = runs_.find(number_key(scope, width, n.stem));
    if (found == runs_.end()) continue;
    Run& run = found->second;
    if (n.number >= run.first && n.number < run.end) run.end = n.number;
  }
}

std::string_view without_root(std::string_view name) {
  while (name.starts_with(':')) name.remove_prefix(1);
  return name;
}

std::string legal_name(std::string_view name) {
  std::string legal(name);
  char before = ':';
  for (char& c : legal) {
    const bool kept = is_letter(c) || c == '_' || c == ':' || (is_digit(c) && before != ':');
    if (!kept) c = '_';
    before = c;
  }
  return legal;
}

}  // namespace vantorelix::standalone
