#include "session/measures/measures.h"

#include "session/measures/kinematics.h"
#include "session/measures/smoothness.h"

namespace vantorelix::session {

namespace {

void add_travel(Measures& m, const Path& path) {
  const Travel travel = travel_of(path);
  if (travel.steps == 0) return;
  m.length = travel.length;
  m.mean_speed = travel.mean_speed;
  m.top_speed = travel.top_speed;
  m.top_speed_frame = path.frame(travel.top_step);
  m.spacing_variation = spacing_variation(path);
}

void add_kinematics(Measures& m, const Path& path) {
  const Kinematics kinematics = kinematics_of(path);
  const Extremes acceleration = extremes_of(kinematics.acceleration, path);
  m.mean_acceleration = acceleration.mean;
  m.top_acceleration = acceleration.top;
  m.top_acceleration_frame = acceleration.top_frame;
  const Extremes jerk = extremes_of(kinematics.jerk, path);
  m.mean_jerk = jerk.mean;
  m.top_jerk = jerk.top;
  m.top_jerk_frame = jerk.top_frame;
  const Extremes curvature = extremes_of(kinematics.curvature, path);
  m.mean_curvature = curvature.mean;
  m.least_curvature = curvature.least;
  m.least_curvature_frame = curvature.least_frame;
  m.top_curvature = curvature.top;
  m.top_curvature_frame = curvature.top_frame;
}

void add_smoothness(Measures& m, const Path& path) {
  auto speeds = path.steps;
  for (double& speed : speeds) speed *= path.rate();
  m.sparc = sparc(speeds, path.rate());
  m.ldlj = log_dimensionless_jerk(path);
}

void add_holds(Measures& m, const Path& path) {
  if (mean_active_step(path) == 0.0) return;
  m.holds = holds_of(path);
  m.hold_count = static_cast<double>(m.holds.size());
  m.hold_frames = 0.0;
  for (const Hold& hold : m.holds) m.hold_frames += hold.last - hold.first;
}

void add_pops(Measures& m, const Path& path) {
  m.pops = pops_of(path);
  if (m.pops.empty()) return;
  m.top_pop = m.pops.front().score;
  m.top_pop_frame = m.pops.front().frame;
  m.top_pop_distance = m.pops.front().distance;
}

void add_contacts(Measures& m, const Path& path, const Ground& ground) {
  const Contacts found = contacts_of(path, ground.up_axis, ground.figure, ground.limits);
  m.floor = found.floor;
  m.figure_height = ground.figure.height;
  m.contact_share = found.share;
  m.slide_share = found.slide_share;
  m.slide_distance = found.slide_distance;
  m.contacts = found.spans;
}

template <class Items, class Write>
void write_list(JsonWriter& json, const char* name, const Items& items, const Write& write) {
  json.key(name);
  json.list({}, [&] {
    for (const auto& item : items) json.object({}, [&] { write(item); });
  });
}

using enum Dimension;

constexpr MeasureField kFields[] = {
    {"length", length, &Measures::length, true},
    {"mean_speed", speed, &Measures::mean_speed, true},
    {"top_speed", speed, &Measures::top_speed, true},
    {"top_speed_frame", frame, &Measures::top_speed_frame, false},
    {"mean_acceleration", acceleration, &Measures::mean_acceleration, false},
    {"top_acceleration", acceleration, &Measures::top_acceleration, false},
    {"top_acceleration_frame", frame, &Measures::top_acceleration_frame, false},
    {"mean_jerk", jerk, &Measures::mean_jerk, false},
    {"top_jerk", jerk, &Measures::top_jerk, false},
    {"top_jerk_frame", frame, &Measures::top_jerk_frame, false},
    {"mean_curvature", curvature, &Measures::mean_curvature, false},
    {"least_curvature", curvature, &Measures::least_curvature, false},
    {"least_curvature_frame", frame, &Measures::least_curvature_frame, false},
    {"top_curvature", curvature, &Measures::top_curvature, false},
    {"top_curvature_frame", frame, &Measures::top_curvature_frame, false},
    {"spacing_variation", number, &Measures::spacing_variation, false},
    {"sparc", number, &Measures::sparc, true},
    {"ldlj", number, &Measures::ldlj, true},
    {"hold_count", number, &Measures::hold_count, false},
    {"hold_frames", frames, &Measures::hold_frames, true},
    {"top_pop", number, &Measures::top_pop, true},
    {"top_pop_frame", frame, &Measures::top_pop_frame, true},
    {"top_pop_distance", length, &Measures::top_pop_distance, false},
    {"floor", length, &Measures::floor, false},
    {"figure_height", length, &Measures::figure_height, false},
    {"contact_share", share, &Measures::contact_share, true},
    {"slide_share", share, &Measures::slide_share, true},
    {"slide_distance", length, &Measures::slide_distance, false},
};

}  // namespace

Measures measures_of(const Path& path, const Ground& ground) {
  Measures measures;
  add_travel(measures, path);
  add_kinematics(measures, path);
  add_smoothness(measures, path);
  add_holds(measures, path);
  add_pops(measures, path);
  add_contacts(measures, path, ground);
  return measures;
}

std::string unit_of(Dimension dimension, const std::string& length) {
  switch (dimension) {
    case Dimension::length:
      return length;
    case Dimension::speed:
      return length + " per second";
    case Dimension::acceleration:
      return length + " per second squared";
    case Dimension::jerk:
      return length + " per second cubed";
    case Dimension::curvature:
      return "1 per " + length;
    case Dimension::frame:
    case Dimension::frames:
      return "frames";
    case Dimension::number:
    case Dimension::share:
      return "1";
  }
  return "";
}

std::span<const MeasureField> measure_fields() { return kFields; }

void write_measures(JsonWriter& json, const Measures& measures) {
  json.object({}, [&] {
    for (const MeasureField& field : kFields) json.field(field.name, measures.*field.value);
    write_list(json, "holds", measures.holds, [&](const Hold& hold) {
      json.field("first", hold.first);
      json.field("last", hold.last);
    });
    write_list(json, "pops", measures.pops, [&](const Pop& pop) {
      json.field("frame", pop.frame);
      json.field("score", pop.score);
      json.field("distance", pop.distance);
    });
    write_list(json, "contacts", measures.contacts, [&](const Contact& contact) {
      json.field("first", contact.first);
      json.field("last", contact.last);
      json.field("slide_distance", contact.slide_distance);
    });
  });
}

}  // namespace vantorelix::session
