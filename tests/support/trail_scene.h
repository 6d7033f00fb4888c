// Trails that exist already, and the calls that every way of the engine makes for one.
#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/fake_host.h"

namespace vantorelix::support {

// An object "|name" and its viz node below the root group, registered as create_trail leaves them.
std::shared_ptr<Settings> add_trail(FakeHost& fake, const std::string& name, const host::Value& samples_per_frame = 1);
// The shape that carries the arrays of the object's trail.
FakeHost::Node& viz_shape(FakeHost& fake, const std::string& name);
// What the shape's array attribute holds; null where nothing was pushed.
Vectors pushed(FakeHost& fake, const std::string& name, const std::string& attribute);

using Lines = std::vector<std::string>;
Lines together(std::initializer_list<Lines> parts);
// Making the fast sampler of "|name", its check at frame 1 included.
Lines fast_sampler_lines(const std::string& name);
// Evaluations at the given frames, the clock read after each.
Lines timed_samples(std::initializer_list<const char*> frames);
// Pushing n positions and k keys, "keyTimes" included.
Lines push_lines(const std::string& name, int n, int k);
Lines frame_attr_lines(const std::string& name, const std::string& start, const std::string& step);

}  // namespace vantorelix::support
