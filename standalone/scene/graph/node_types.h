// What the scene knows of node types without being told.
#pragma once

#include <string_view>

#include "standalone/scene/graph/scene_data.h"

namespace vantorelix::standalone {

// Category::other for a type that nobody has heard of.
Category category_of(std::string_view type);
NameSet name_set_of(std::string_view type, Category category);
// The name without its number that an unnamed node of the type gets.
std::string_view default_stem(std::string_view type);
bool is_curve_type(std::string_view type, CurveKind& kind);

}  // namespace vantorelix::standalone
