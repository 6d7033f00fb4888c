// Node names: what is taken where, and who has which name. All by hash.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "standalone/scene/scene.h"

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
  const std::vector<NodeId>& nodes(Entry name) const { return entries_[name].nodes; }
  // The node of that name in a scope; kNoNode when it is free there.
  NodeId in_scope(NodeId scope, Entry name) const;
  bool taken(NodeId scope, std::string_view text) const;

  // `wanted`, or the same with the number at its end raised (or a number added) to the first that is free.
  // `everywhere` looks for a name that nobody has in any scope.
  std::string free_name(NodeId scope, std::string_view wanted, bool everywhere = false);
  // Enters a free name.
  Entry add(NodeId scope, std::string_view text, NodeId node);
  void remove(NodeId scope, Entry name, NodeId node);

 private:
  struct NameEntry {
    std::string text;
    std::vector<NodeId> nodes;
    bool global = false;  // the one node is outside the DAG
  };
  static std::uint64_t key(NodeId scope, Entry name) { return (std::uint64_t{scope} << 32) | name; }
  void forget_numbers(NodeId scope, std::string_view text);

  std::deque<NameEntry> entries_;
  std::vector<Entry> unused_;
  std::unordered_map<std::string_view, Entry> by_text_;
  std::unordered_map<std::uint64_t, NodeId> in_scope_;
  // For "scope, digits, stem": a run of numbers that are all taken, so that the millionth equal name is found as fast
  // as the first. Cut short when a name goes.
  struct Run {
    std::uint64_t first;
    std::uint64_t end;  // not in it
  };
  std::unordered_map<std::string, Run> runs_;
  std::vector<std::uint32_t> places_;  // of each node in its entry's list
};

// Illegal characters, and a digit in front, become "_".
std::string legal_name(std::string_view name);

}  // namespace vantorelix::standalone
