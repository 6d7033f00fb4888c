// The published constants: identity, option keys, tuning, the colour ramp.
#pragma once

#include <array>
#include <string>

#include "engine/state/ramp_stops.h"

namespace vantorelix {

inline const std::string SCRIPT_NAME = "Vantorelix";
inline const std::string SCRIPT_VERSION = "v1_04";
inline const std::string PLUGIN_BASENAME = "Vantorelix_plugin";
inline const std::string NODE_TYPE = "vantorelix";
inline const std::string TRAIL_ROOT = "vantorelixs_grp";

inline const std::string OPT_SAMPLES = "Vantorelix_samplesPerFrame";
inline const std::string OPT_LINE_WIDTH = "Vantorelix_lineWidth";
inline const std::string OPT_POINT_SIZE = "Vantorelix_pointSize";
inline const std::string OPT_SHOW_LINE = "Vantorelix_showLine";
inline const std::string OPT_SHOW_DOTS = "Vantorelix_showDots";
inline const std::string OPT_XRAY = "Vantorelix_xrayMode";
inline const std::string OPT_COLOR_MODE = "Vantorelix_colorMode";

inline constexpr double _CHUNK_BUDGET = 0.008;    // seconds of one deferred rebuild step
inline constexpr double _DEBOUNCE = 0.2;          // seconds of quiet after an edit before rebuilding
inline constexpr double _CREATE_BUDGET = 0.15;    // seconds of foreground sampling in one create_trail
inline constexpr double _SPACING_RED_MULT = 2.5;  // multiple of the baseline spacing at the top of the ramp
inline const std::array<std::string, 1> _VIEWPORT_TRAIL_FLAGS = {"motionTrails"};

}  // namespace vantorelix
