// A small map that keeps insertion order, as the mappings of the scripting language do.
#pragma once

#include <iterator>
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

// Keys are unique; assigning to an existing key keeps its place. Look-up and erasing take constant time.
//
// Letting go of a value may run the host's code, and that may change this very map. So values go out as copies, never
// as references, and what is replaced or erased dies last, when the map is whole again. Only begin() and end() lead
// inside: for loops that touch nothing of the host's; others work on a snapshot.
template <class T>
class OrderedMap {
 public:
  using Item = std::pair<const std::string, T>;
  using Snapshot = std::vector<std::pair<std::string, T>>;

  OrderedMap() = default;
  OrderedMap(const OrderedMap&) = delete;
  OrderedMap& operator=(const OrderedMap&) = delete;
  OrderedMap(OrderedMap&& other) noexcept { swap(other); }
  OrderedMap& operator=(OrderedMap&& other) noexcept {
    swap(other);
    return *this;
  }

  bool empty() const { return items_.empty(); }
  std::size_t size() const { return items_.size(); }
  bool contains(const std::string& key) const { return find(*this, key) != items_.end(); }
  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }

  void set(const std::string& key, T value) {
    const auto outdated = std::move(snapshot_);
    const auto found = find(*this, key);
    if (found != items_.end()) return std::swap(found->second, value);
    items_.emplace_back(key, std::move(value));
    const auto item = std::prev(items_.end());
    index_.emplace(item->first, item);
  }

  // Throws host::Error of kind key, whose text is the quoted key.
  T at(const std::string& key) const {
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
    const auto outdated = std::move(snapshot_);
    index_.erase(found->first);
    std::list<Item> erased;
    erased.splice(erased.end(), items_, found);
    return true;
  }

  void clear() { OrderedMap().swap(*this); }

  void swap(OrderedMap& other) noexcept {
    snapshot_.swap(other.snapshot_);
    items_.swap(other.items_);
    index_.swap(other.index_);
  }

  // What is here now, in order; later changes leave it alone. Constant time while nothing changes.
  std::shared_ptr<const Snapshot> snapshot() const {
    if (!snapshot_) snapshot_ = std::make_shared<Snapshot>(items_.begin(), items_.end());
    return snapshot_;
  }

 private:
  using Place = typename std::list<Item>::iterator;

  // The item of `map.items_`, or its end.
  template <class Map>
  static auto find(Map& map, const std::string& key) {
    const auto found = map.index_.find(key);
    return found == map.index_.end() ? map.items_.end() : decltype(map.items_.begin())(found->second);
  }

  mutable std::shared_ptr<const Snapshot> snapshot_;  // null when the map has changed since the last one
  std::list<Item> items_;
  std::unordered_map<std::string_view, Place> index_;  // by the text of their keys
};

}  // namespace vantorelix
