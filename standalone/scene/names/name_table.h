// Node names: what is taken where, and who has which name. All by hash. For the files of standalone/scene only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "standalone/scene/names/hash_index.h"
#include "standalone/scene/names/node_id.h"

namespace vantorelix::standalone {

// Names are unique in a scope: the children of one DAG node, or, in kGlobalScope, all nodes outside the DAG. A name
// of the global scope is taken everywhere, and nothing in it may bear a name that is in use anywhere.
class NameTable {
 public:
  using Entry = std::uint32_t;
  static constexpr NodeId kGlobalScope = kNoNode;
  static constexpr Entry kNone = 0xffffffffu;

  const std::string& text(Entry name) const { return entries_[name].text; }
  Entry find(std::string_view text) const;
  // The nodes of that name, in no particular order.
  std::span<const NodeId> nodes(Entry name) const { return entries_[name].nodes; }
  // The node of that name in a scope; kNoNode when it is free there.
  NodeId in_scope(NodeId scope, Entry name) const;
  bool taken(NodeId scope, std::string_view text) const;

  // `wanted`, or the same with the number at its end raised (or a number added) to the first that is free.
  // `everywhere` looks for a name that nobody has in any scope.
  std::string free_name(NodeId scope, std::string wanted, bool everywhere = false);
  // Enters a free name.
  Entry add(NodeId scope, std::string_view text, NodeId node);
  void remove(NodeId scope, Entry name, NodeId node);

 private:
  struct NameEntry {
    std::string text;
    std::vector<NodeId> nodes;
    bool global = false;  // the one node is outside the DAG
  };
  // Where a node stands.
  struct Place {
    NodeId scope;
    Entry name;
    std::uint32_t in_nodes;  // of its name
  };
  static std::size_t place_hash(NodeId scope, Entry name) { return std::size_t{scope} * 0x9e3779b1u + name; }
  void forget_numbers(NodeId scope, std::string_view text);

  std::deque<NameEntry> entries_;
  std::vector<Entry> unused_;
  HashIndex by_text_;   // of entries
  HashIndex in_scope_;  // of nodes, by scope and name
  // The numbers [first, end) are all taken behind one stem, so that the search for a free number begins at `end` and
  // the millionth equal name is made as fast as the first. Cut short when a name in it goes. The key is number_key().
  struct Run {
    std::uint64_t first;
    std::uint64_t end;
  };
  std::unordered_map<std::string, Run> runs_;
  std::vector<Place> places_;  // by node
};

// ":name" and "name" are the same: the root namespace.
std::string_view without_root(std::string_view name);

// Illegal characters, and a digit in front, become "_".
std::string legal_name(std::string_view name);

}  // namespace vantorelix::standalone
