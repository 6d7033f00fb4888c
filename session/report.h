// What the viz nodes of a scene hold, gathered for the writers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/matrix.h"
#include "base/vector.h"
#include "session/measures/measures.h"
#include "session/session.h"
#include "standalone/scene/scene.h"

namespace vantorelix::session {

// The same object in another scene, beside a trail (session/compare.h).
struct Comparison {
  std::string source;             // its long path there
  Vectors points;                 // its positions there at the trail's frames, in the trail's unit and up axis
  std::vector<double> distances;  // one a sample; not a number where a position is not finite
  double largest;                 // of the distances; not a number where none is known
  double frame;                   // where it is largest first
  Figure figure = {};             // that it belongs to, likewise
};

// One trail as its viz node shows it. The arrays share the node's storage.
struct TrailView {
  std::string viz;                    // short name of the viz transform
  std::string source;                 // long path of the object
  std::string name;                   // the object's own name in its file, whatever its bytes
  std::optional<std::int64_t> node;   // its number in a file that numbers its nodes
  std::optional<std::string> parent;  // long path of its nearest ancestor that has a trail in the report
  std::int64_t samples_per_frame = 1;
  std::int64_t color_mode = 0;
  double start_frame = 0.0;
  double frame_step = 1.0;
  double line_width = 0.0;
  double point_size = 0.0;
  bool show_line = true;
  bool show_dots = true;
  bool ghost = false;  // drawn through geometry
  Vectors points, colors, key_points, key_colors;
  std::vector<double> key_times;
  std::vector<std::string> warnings;
  std::optional<Comparison> compare = {};
  Figure figure = {};  // that the object belongs to, where it was asked for
};

// A node that does not move and has geometry, as the box around it.
struct StaticBox {
  std::string name;  // long path
  Affine world;
  Vector low, high;  // corners in the node's own space
};

// What the trails were compared with.
struct ComparedScene {
  std::string scene;                // the file as it was named
  std::optional<std::string> take;  // as it was named
  double fps = 0.0;
};

// What counts as contact with the floor (session/measures/contacts.h).
enum class ContactRule { figure, centimetres };

// What a scene says whose format knows no unit.
inline constexpr const char* kUnknownUnit = "unknown";

struct TrailReport {
  std::string scene;  // the file as it was named
  double fps = 0.0;
  double first = 0.0;  // playback range, frames
  double last = 0.0;
  std::string unit;
  char up_axis = 'y';
  std::vector<TrailView> trails;
  double current = 0.0;                 // the scene's current frame
  std::vector<StaticBox> statics = {};  // only where they were asked for
  std::optional<ComparedScene> compared = {};
  ContactRule contacts = ContactRule::figure;
  bool color_mode_chosen = false;  // by an option or a preference, rather than by the engine's default
};

// The unit as texts name it: "units" where it is unknown.
std::string unit_text(const TrailReport& report);
// How many centimetres a unit of length has; nothing where that is not known.
std::optional<double> centimetres(const std::string& unit);

// With figures each trail has its own, which measures of contact need: looking at all parts of them takes a tenth of
// the time that the trails did.
enum class Figures { without, with };
TrailReport read_trails(const standalone::Scene& scene, const std::vector<Trail>& trails, const std::string& file,
                        Figures figures = Figures::without);

// A trail as what measures are taken of; refers to its points.
Path path_of(const TrailView& trail, double fps);

// What measures of contact need to know about a trail of that figure.
Ground ground_of(const TrailReport& report, const Figure& figure);

// All measures of a trail of the report.
Measures measures_of(const TrailView& trail, const TrailReport& report);
// The same of its object in the second scene; nothing where that lacks it.
std::optional<Measures> measures_of_second(const TrailView& trail, const TrailReport& report);

}  // namespace vantorelix::session
