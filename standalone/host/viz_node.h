// The node that a trail is shown on, as this host has it.
#pragma once

#include <string_view>
#include <utility>
#include <vector>

#include "host/value.h"
#include "standalone/scene/scene.h"

namespace vantorelix::standalone::viz_node {

inline constexpr const char* kType = "vantorelix";

// An attribute that holds one number or switch, with its default, whose kind is the attribute's type.
using PlainAttribute = std::pair<std::string_view, host::Value>;

// The attributes of the type. The node plug-in defines them; the build makes these tables from it (tools/viz_node.py).
const std::vector<std::string_view>& vector_arrays();
const std::vector<PlainAttribute>& plain_attributes();

bool is_vector_array(std::string_view attribute);
// The type's own default for a plain attribute; null for anything else.
const host::Value* default_of(std::string_view attribute);
// Makes the type known to a scene, with its plain attributes.
void define(Scene& scene);

}  // namespace vantorelix::standalone::viz_node
