// What belongs to no node.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "standalone/scene/graph/scene_part.h"
#include "standalone/scene/names/node_id.h"

namespace vantorelix::standalone {

// A piece of animation that a file holds under a name: an FBX take, a glTF clip.
struct Take {
  std::string name;
  double first;  // frames
  double last;
};

// As a scene keeps them.
struct Settings {
  double frames_per_second = 24.0;
  std::string linear_unit = "cm";
  char up_axis = 'y';
  double playback_min = 1.0, playback_max = 24.0, current_time = 1.0;
  std::vector<Take> takes;
  std::size_t take = 0;
  std::string current_namespace;
};

// One thing that a reader met and could not follow; equal kinds are counted, not repeated.
struct Warning {
  std::string kind;  // "constraint parentConstraint is not evaluated; the object keeps its static values"
  std::size_t count;
};

class SceneSettings : public ScenePart {
 public:
  using ScenePart::ScenePart;

  double frames_per_second() const;  // 24 unless set; > 0
  void set_frames_per_second(double fps);
  std::string linear_unit() const;  // "cm" unless set: the unit of every position that comes out
  void set_linear_unit(std::string unit);
  char up_axis() const;  // 'y' or 'z'
  void set_up_axis(char axis);
  double playback_min() const;  // frames
  double playback_max() const;
  void set_playback_range(double first, double last);
  double current_time() const;  // frames
  // What the file has to choose from, in its order, and which of them this is; empty where its format knows no takes.
  const std::vector<Take>& takes() const;
  std::size_t take() const;
  void set_takes(std::vector<Take> takes, std::size_t chosen);
  void set_current_time(double frame);
};

class SceneWarnings : public ScenePart {
 public:
  using ScenePart::ScenePart;

  void add(std::string kind);
  std::vector<Warning> all() const;
};

}  // namespace vantorelix::standalone
