// A small map that keeps insertion order, as the mappings of the scripting language do.
#pragma once

#include <algorithm>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/error.h"
#include "host/value.h"

namespace vantorelix {

// Keys are unique; assigning to an existing key keeps its place. Look-up is constant time, erasing too. There is one
// for each trail, with three keys: the first few are found by looking at each, and have no index.
template <class T>
class OrderedMap {
 public:
  using Item = std::pair<const std::string, T>;
  using Snapshot = std::vector<std::pair<std::string, T>>;

  bool empty() const { return items_.empty(); }
  std::size_t size() const { return items_.size(); }
  bool contains(const std::string& key) const { return find(*this, key) != items_.end(); }
  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }

  // The value under `key`, default-constructed first when it is new.
  T& operator[](const std::string& key) {
    snapshot_.reset();
    const auto found = find(*this, key);
    if (found != items_.end()) return found->second;
    items_.emplace_back(key, T{});
    if (!index_.empty()) {
      enter(std::prev(items_.end()));
    } else if (items_.size() > kFew) {
      for (auto item = items_.begin(); item != items_.end(); ++item) enter(item);
    }
    return items_.back().second;
  }

  // Throws host::Error of kind key, whose text is the quoted key.
  const T& at(const std::string& key) const {
    const auto found = find(*this, key);
    if (found == items_.end()) throw host::Error(host::Value(key).repr(), host::ErrorKind::key);
    return found->second;
  }

  // A copy of the value under `key`, or `otherwise`.
  T get(const std::string& key, T otherwise = T{}) const {
    const auto found = find(*this, key);
    return found == items_.end() ? otherwise : found->second;
  }

  // True when there was one.
  bool erase(const std::string& key) {
    const auto found = find(*this, key);
    if (found == items_.end()) return false;
    snapshot_.reset();
    index_.erase(found->first);
    items_.erase(found);
    return true;
  }

  void clear() {
    snapshot_.reset();
    index_.clear();
    items_.clear();
  }

  // What is here now, in order; later changes leave it alone. Constant time while nothing changes.
  std::shared_ptr<const Snapshot> snapshot() const {
    if (!snapshot_) snapshot_ = std::make_shared<const Snapshot>(items_.begin(), items_.end());
    return snapshot_;
  }

 private:
  static constexpr std::size_t kFew = 8;
  using Place = typename std::list<Item>::iterator;

  // The item of `map.items_`, or its end.
  template <class Map>
  static auto find(Map& map, const std::string& key) {
    if (map.index_.empty())
      return std::find_if(map.items_.begin(), map.items_.end(), [&key](const Item& item) { return item.first == key; });
    const auto found = map.index_.find(key);
    return found == map.index_.end() ? map.items_.end() : decltype(map.items_.begin())(found->second);
  }
  void enter(Place item) { index_.emplace(item->first, item); }

  mutable std::shared_ptr<const Snapshot> snapshot_;  // null when the map has changed since the last one
  std::list<Item> items_;
  std::unordered_map<std::string_view, Place> index_;  // of all items, their keys' text; empty while there are few
};

}  // namespace vantorelix
