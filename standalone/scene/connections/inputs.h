// What drives a node: its incoming connections, in the order in which they were made.
// For the files of standalone/scene only.
#pragma once

#include <cstddef>
#include <unordered_map>
#include <vector>

#include "standalone/scene/attributes/attribute_names.h"
#include "standalone/scene/names/node_id.h"

namespace vantorelix::standalone {

struct Input {
  AttributeId attribute;  // on the node itself
  NodeId source;          // kNoNode: a gap, skipped by every reader
  AttributeId source_attribute;
};

// Nodes have a handful of inputs, but sets and references have tens of thousands: from kIndexed on they are found by
// hash, and a removed one leaves a gap until there are more gaps than inputs.
class Inputs {
 public:
  const Input* find(AttributeId attribute) const;
  // Replaces the source of an attribute that has one, in its place.
  void set(const Input& input);
  bool remove(AttributeId attribute);
  // How many stand before it.
  std::size_t order_of(AttributeId attribute) const;
  // Gives an attribute that has none a source, at a place in the order.
  void insert(const Input& input, std::size_t order);
  bool empty() const { return gaps_ == all_.size(); }
  // With gaps.
  const std::vector<Input>& all() const { return all_; }

 private:
  static constexpr std::size_t kIndexed = 48;
  std::size_t place(AttributeId attribute) const;  // all_.size() when there is none
  void compact();

  std::vector<Input> all_;
  std::size_t gaps_ = 0;
  std::unordered_map<AttributeId, std::size_t> index_;
};

// A connection as its source sees it. Not removed with the connection: whoever reads it checks that it still stands.
struct Output {
  NodeId destination;
  AttributeId attribute;
};

}  // namespace vantorelix::standalone
