// What the scene knows of node types without being told. For the files of standalone/scene only.
#pragma once

#include <cstdint>
#include <string_view>

#include "standalone/scene/attributes/attribute_names.h"
#include "standalone/scene/curves/curve_key.h"

namespace vantorelix::standalone {

enum class Category : std::uint8_t {
  transform,   // has channels, can have children
  constraint,  // the same, but what comes out of it cannot be followed
  shape,       // hangs under a transform
  curve,       // an animation curve over time
  other        // outside the DAG
};

// Category::other for a type that nobody has heard of.
Category category_of(std::string_view type);
NameSet name_set_of(std::string_view type, Category category);
// The name without its number that an unnamed node of the type gets.
std::string_view default_stem(std::string_view type);
bool is_curve_type(std::string_view type, CurveKind& kind);

}  // namespace vantorelix::standalone
