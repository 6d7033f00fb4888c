// Names of outputs that tell those of several scenes apart.
#pragma once

#include <string>

namespace vantorelix::cli {

// The path with {stem}, {name} and {ext} replaced: "walk", "walk.fbx" and "fbx" of the scene "shots/walk.fbx". All else
// stays as it is, other braces too.
std::string fill_in(const std::string& output, const std::string& scene);
// Whether the path depends on the scene's name.
bool names_scene(const std::string& output);

}  // namespace vantorelix::cli
