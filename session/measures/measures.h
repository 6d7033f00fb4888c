// All measures of one path, with their names and units: what tables, files and scripts take them from.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "base/json_writer.h"
#include "session/measures/contacts.h"
#include "session/measures/holds.h"
#include "session/measures/path.h"
#include "session/measures/pops.h"

namespace vantorelix::session {

// Not a number where a measure is not known. The names are those of docs/measures.md, which explains each.
struct Measures {
  double length = kUnknown;
  double mean_speed = kUnknown, top_speed = kUnknown, top_speed_frame = kUnknown;
  double mean_acceleration = kUnknown, top_acceleration = kUnknown, top_acceleration_frame = kUnknown;
  double mean_jerk = kUnknown, top_jerk = kUnknown, top_jerk_frame = kUnknown;
  double mean_curvature = kUnknown, least_curvature = kUnknown, least_curvature_frame = kUnknown;
  double top_curvature = kUnknown, top_curvature_frame = kUnknown;
  double spacing_variation = kUnknown;
  double sparc = kUnknown, ldlj = kUnknown;
  double hold_count = kUnknown, hold_frames = kUnknown;
  double top_pop = kUnknown, top_pop_frame = kUnknown, top_pop_distance = kUnknown;
  double floor = kUnknown, figure_height = kUnknown;
  double contact_share = kUnknown, slide_share = kUnknown, slide_distance = kUnknown;
  std::vector<Hold> holds;
  std::vector<Pop> pops;
  std::vector<Contact> contacts;
};

// What measures of contact need to know of the scene.
struct Ground {
  char up_axis = 'y';
  Figure figure;
  ContactLimits limits = {kUnknown, kUnknown};  // in the path's unit
};
Measures measures_of(const Path& path, const Ground& ground);

enum class Dimension { number, share, frame, frames, length, speed, acceleration, jerk, curvature };

// "cm per second squared", where a length is in "cm"; "1" for what has no unit.
std::string unit_of(Dimension dimension, const std::string& length);

// A measure that is one number. In the order of tables and files.
struct MeasureField {
  const char* name;
  Dimension dimension;
  double Measures::*value;
  bool brief;  // among the few that a table for people has
};
std::span<const MeasureField> measure_fields();

// An object: each field by its name, null where it is not known; then the lists `holds`, `pops` and `contacts`, of
// objects whose fields bear the names of those of Hold, Pop and Contact.
void write_measures(JsonWriter& json, const Measures& measures);

}  // namespace vantorelix::session
