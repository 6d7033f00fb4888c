// A report's trails as columns: what tables of many trails are made of. In each column the trails follow each other.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "session/report.h"

namespace vantorelix::session {

// Not a number where something is not known or not finite.
struct Columns {
  // Of each sample: its position, and the speed on the way to the next in units a second, not known at a trail's last.
  std::vector<double> x, y, z, speed;
  // Of each key.
  std::vector<double> key_frame, key_x, key_y, key_z;
  // How many rows each trail has of both.
  std::vector<std::size_t> sample_counts, key_counts;
  // Of each trail: every measure that is one number, a column after the other in the order of measure_units().
  std::vector<double> measures;
};

Columns columns_of(const TrailReport& report);

}  // namespace vantorelix::session
