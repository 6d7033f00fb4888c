// Samplers as scripts see and give them.
#pragma once

#include "engine/sampling/position_sampling.h"
#include "maya/extension/python/python.h"

namespace vantorelix::maya {

// A callable that takes a time and gives a position.
Ref sampler_object(const SamplerPtr& sampler);
// The sampler inside such a callable, or one that calls any other; null for None and null.
SamplerPtr sampler_of(PyObject* callable);

}  // namespace vantorelix::maya
