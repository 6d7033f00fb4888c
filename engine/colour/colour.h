// The colour ramp and the colours of the four modes: 0 "Standard", 1 "Spacing", 2 "Flow", 3 "Beats".
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "engine/state/state.h"

namespace vantorelix {

// The colour at t of _RAMP_STOPS, linear between stops; t is clamped to 0..1.
Colour _color_ramp(double t);

// Spacing colours, one per position, and the spacing reference (made here when `ref` is none). Throws host::Error
// of kind index for exactly one position: it has no segment to measure.
std::pair<std::vector<Colour>, host::Value> _colors_from_positions(const std::vector<Position>& pos,
                                                                   const host::Value& ref = {});

// n times the standard colour. A negative n gives none, here and below.
std::vector<Colour> compute_standard_colors(const host::Value& n);
// Past and future around the host's current time (start_frame when that cannot be read). frame_step of 0 or less
// counts as 1.
std::vector<Colour> compute_temperature_colors(const host::Value& n, double start_frame, double frame_step);
// Alternating bands between key times; unsorted key times are sorted first.
std::vector<Colour> compute_beats_colors(const host::Value& n, double start_frame, double frame_step,
                                         const std::vector<double>& key_times);

}  // namespace vantorelix
