// The units that a Maya ASCII file is written in.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vantorelix::standalone {

// Lengths stay in the file's own linear unit, which becomes the scene's. Matrices and tangents are stored in
// centimetres whatever the unit is.
struct LinearUnit {
  std::string name;    // short: "cm"
  double centimetres;  // in one unit
};

// Short and long names ("cm", "centimeter"); nothing for a name that is none.
std::optional<LinearUnit> linear_unit_named(std::string_view name);
// Radians in one unit: "deg", "rad", "min" (of arc), "sec".
std::optional<double> angular_unit_named(std::string_view name);
// Frames a second of a time unit: 24 for "film", 1 for "sec", 30000/1001 for "29.97fps".
std::optional<double> frame_rate_named(std::string_view name);

// The other way: "film", or "120fps" for a rate without a name of its own.
std::string frame_rate_name(double rate);

}  // namespace vantorelix::standalone
