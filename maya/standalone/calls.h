// The calls of a session by name. The few that scripts make very often have C functions of their own (c_api.cpp).
#pragma once

#include <map>
#include <numbers>
#include <string>
#include <string_view>
#include <vector>

#include "host/value.h"
#include "maya/standalone/session.h"

namespace vantorelix::standalone {

// The arguments of one call, in order. What is missing is none. Each accessor throws host::Error of kind type when the
// argument is of another kind.
class Arguments {
 public:
  explicit Arguments(const std::vector<host::Value>& values) : values_(values) {}

  const host::Value& value(std::size_t i) const;
  bool has(std::size_t i) const { return !value(i).is_none(); }
  bool flag(std::size_t i) const { return value(i).truthy(); }
  const std::string& text(std::size_t i) const;
  double number(std::size_t i) const;
  int integer(std::size_t i) const { return static_cast<int>(value(i).to_int()); }
  NodeId node(std::size_t i) const { return static_cast<NodeId>(value(i).to_int()); }
  const std::vector<host::Value>& list(std::size_t i) const;

 private:
  const std::vector<host::Value>& values_;
};

using Call = host::Value (*)(Session&, const Arguments&);
using Calls = std::map<std::string_view, Call>;

// Nodes go by their number, times by frames, angles by degrees.
const Calls& node_calls();
const Calls& attribute_calls();
const Calls& animation_calls();
const Calls& host_calls();
const Calls& undo_calls();

// Throws host::Error of kind attribute for an unknown name.
host::Value call(Session& session, const std::string& name, const host::Value& arguments);

inline constexpr double kDegrees = 180.0 / std::numbers::pi;  // a radian

// --- forms of results
host::Value list_of(const std::vector<NodeId>& nodes);
host::Value list_of(const std::vector<double>& numbers);
host::Value list_of(const std::vector<std::string>& texts);
host::Value node_or_none(NodeId node);
// The channel of a transform or joint that the attribute is; Channel::count when it is none.
Channel channel_named(const Scene& scene, NodeId node, const std::string& attribute);
// The three channels of a compound ("translate"); none for anything else.
std::vector<std::string> channel_parts(const Scene& scene, NodeId node, const std::string& attribute);

}  // namespace vantorelix::standalone
