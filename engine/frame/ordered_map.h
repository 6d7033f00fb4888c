// A small map that keeps insertion order, as the mappings of the scripting language do.
#pragma once

#include <list>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/error.h"
#include "host/value.h"

namespace vantorelix {

// Keys are unique; assigning to an existing key keeps its place. Look-up is constant time, erasing too.
template <class T>
class OrderedMap {
 public:
  using Item = std::pair<const std::string, T>;
  using Snapshot = std::vector<std::pair<std::string, T>>;

  bool empty() const { return items_.empty(); }
  std::size_t size() const { return items_.size(); }
  bool contains(const std::string& key) const { return index_.count(key) != 0; }
  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }

  // The value under `key`, default-constructed first when it is new.
  T& operator[](const std::string& key) {
    snapshot_.reset();
    auto found = index_.find(key);
    if (found == index_.end()) {
      items_.emplace_back(key, T{});
      found = index_.emplace(key, std::prev(items_.end())).first;
    }
    return found->second->second;
  }

  // Throws host::Error of kind key, whose text is the quoted key.
  const T& at(const std::string& key) const {
    const auto found = index_.find(key);
    if (found == index_.end()) throw host::Error(host::Value(key).repr(), host::ErrorKind::key);
    return found->second->second;
  }

  // A copy of the value under `key`, or `otherwise`.
  T get(const std::string& key, T otherwise = T{}) const {
    const auto found = index_.find(key);
    return found == index_.end() ? otherwise : found->second->second;
  }

  // True when there was one.
  bool erase(const std::string& key) {
    const auto found = index_.find(key);
    if (found == index_.end()) return false;
    snapshot_.reset();
    items_.erase(found->second);
    index_.erase(found);
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
  mutable std::shared_ptr<const Snapshot> snapshot_;  // null when the map has changed since the last one
  std::list<Item> items_;
  std::unordered_map<std::string, typename std::list<Item>::iterator> index_;
};

}  // namespace vantorelix
