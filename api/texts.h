// What callers of the C interface are told as JSON: everything but arrays of numbers.
#pragma once

#include <string>

#include "api/open_scene.h"
#include "session/report.h"
#include "session/tables/columns.h"

namespace vantorelix::api {

// {"fps", "range", "unit", "up_axis", "takes": [{"name", "first", "last"}], "take": index or null, "warnings": [text]}
std::string description_of(const OpenScene& scene);

// A list of {"source", "name", "node", "type", "parent", "animated"}: each object of the file, in its order.
std::string objects_of(const OpenScene& scene);

// A list of {"shape", "source", "looks"}: each camera of the file, the object that it hangs on, and the axis of that
// object along which it looks, "-z" or "x"; y is up.
std::string cameras_of(const OpenScene& scene);

// A list of {"name", "matrix", "low", "high"}: the boxes of what stands still, as the program's pages have them.
std::string statics_of(const OpenScene& scene, double frame);

// A list of {"attribute", "curve", "kind", "weighted", "pre", "post", "keys"}: each channel of the object that a curve
// drives, with how many keys it has. The kind is "linear", "angular", "unitless" or "time"; before and after the keys
// the curve is "constant" or "linear", or goes on as "cycle", "cycle_offset" or "oscillate".
std::string curves_of(const OpenScene& scene, standalone::NodeId object);

// {"obstacle", "text"}: what keeps keys of the object's translation at this frame from putting it elsewhere, as one of
// the words of session::Obstacle and as a sentence; both null where nothing does.
std::string placing_of(const OpenScene& scene, standalone::NodeId object, double frame);

// {"obstacle", "text", "first", "last"}: what keeps the object from sliding on its path at this frame, told as above,
// and the frames of the keys between which it can; the first two or the last two are null.
std::string sliding_of(const OpenScene& scene, standalone::NodeId object, double frame);

// {"undo": [name], "redo": name or null, "redo_count"}; the step that is undone first stands last.
std::string history_of(OpenScene& scene);

// The fields of a trail in the JSON of the program but for its arrays and measures, and the `units` of its scene.
std::string trail_text(const session::TrailView& trail, const session::TrailReport& report);

// {"trails": the fields of each as the program's JSON has them, without arrays and measures, and how many "samples" and
// "keys" it has; "units": {measure: unit}, in the order of the columns of measures}
std::string tables_text(const session::TrailReport& report, const session::Columns& columns);

// The field `measures` of a trail in the JSON of the program.
std::string measures_text(const session::Measures& measures);

}  // namespace vantorelix::api
