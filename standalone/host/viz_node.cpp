#include "standalone/host/viz_node.h"

#include <algorithm>

namespace vantorelix::standalone::viz_node {

bool is_vector_array(std::string_view attribute) {
  return std::find(vector_arrays().begin(), vector_arrays().end(), attribute) != vector_arrays().end();
}

const host::Value* default_of(std::string_view attribute) {
  for (const auto& [name, value] : plain_attributes())
    if (name == attribute) return &value;
  return nullptr;
}

void define(Scene& scene) { scene.nodes.register_shape_type(kType, plain_attributes()); }

}  // namespace vantorelix::standalone::viz_node
