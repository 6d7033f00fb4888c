// The one place that writes a trail's geometry onto its viz node.
#pragma once

#include <string>
#include <vector>

#include "engine/trails/trail_data.h"

namespace vantorelix {

// Replaces a vector-array attribute (named without the dot). When the host refuses the whole sequence at once, the
// array is filled value by value. Throws what the host throws.
void _set_vector_array_attr(const std::string& node, const std::string& attr, const Vectors& values);

// Writes "points", "colors", "keyPoints", "keyColors" onto the shape of `viz_tr`, and "keyTimes" when `key_times` is
// not null; a failure of "keyTimes" alone is ignored.
void _push_data_to_viz(const std::string& viz_tr, const VizData& data, const std::vector<double>* key_times = nullptr);

// Writes "startFrame" and "frameStep". Best effort: failures are ignored. Both are converted to doubles.
void _update_frame_attrs(const std::string& viz_tr, const host::Value& start, const host::Value& step);

}  // namespace vantorelix
