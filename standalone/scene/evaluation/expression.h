// A driven channel whose driver is more than one animation curve, as a list of operations.
// For the files of this folder only.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "standalone/scene/attributes/attribute_names.h"
#include "standalone/scene/curves/anim_curve.h"
#include "standalone/scene/graph/graph.h"

namespace vantorelix::standalone {

struct Operation {
  enum class Kind : std::uint8_t {
    value,  // a static value of some node
    curve,
    track,           // a component of its values
    scale,           // number * argument 0
    blend,           // argument 0 to argument 1 by the weight in argument 2
    rotation_blend,  // component of the rotation between arguments 0..2 and 3..5 by the weight in 6, order in 7
  };
  Kind kind = Kind::value;
  std::uint8_t component = 0;
  std::array<std::uint16_t, 8> arguments = {};
  NodeId node = kNoNode;
  AttributeId attribute = 0;
  double number = 0.0;  // of a value: read by refresh_values; of a scale: the factor
  const AnimCurve* curve = nullptr;
  const Track* track = nullptr;
};

// In order of evaluation: arguments are earlier operations. The last is the result.
struct Expression {
  static constexpr std::size_t kMaxOperations = 256;
  std::vector<Operation> operations;
  double evaluate(double frame) const;
};

// Follows what drives an attribute. On success `expression` computes it and the text is empty; else the text says
// what stands in the way: "a pairBlend ...". Chains longer than kMaxOperations and cycles are refused.
std::string compile_driver(const Graph& scene, NodeId node, AttributeId attribute, Expression& expression);

// Reads the static values (Kind::value) again, without following connections anew.
void refresh_values(const Graph& scene, Expression& expression);

}  // namespace vantorelix::standalone
