// Connections between attributes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "standalone/scene/graph/scene_part.h"
#include "standalone/scene/names/node_id.h"

namespace vantorelix::standalone {

// A connection as its destination sees it.
struct Connection {
  NodeId source;
  std::string source_attribute;
  std::string attribute;
};

class SceneConnections : public ScenePart {
 public:
  using ScenePart::ScenePart;

  // "output" of an animation curve, unitConversion or pairBlend, any channel or parent of channels ("translate"), a
  // number that a transform or shape was given with add_attribute, "worldMatrix[0]" and "matrix" into
  // "offsetParentMatrix", and anything else, which is kept and reported as not followed. Replaces what drove the
  // destination. Cycles, and chains of more than 256 connections, are kept but not followed. Converters and curves that
  // are left driving nothing when what they drove is deleted go with it.
  void connect(NodeId source, std::string_view source_attribute, NodeId destination,
               std::string_view destination_attribute);
  void disconnect(NodeId destination, std::string_view destination_attribute);
  // What drives the node's attributes, in order of connection.
  std::vector<Connection> into(NodeId node) const;
};

}  // namespace vantorelix::standalone
