// Questions about the trails in the scene, whether or not the registry knows them.
#pragma once

#include <cstdint>

namespace vantorelix {

bool has_any_trail();
std::int64_t trail_count();

}  // namespace vantorelix
