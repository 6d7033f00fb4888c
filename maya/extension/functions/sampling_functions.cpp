// Preferences, messages, sampling and colouring.
#include "engine/colour/colour.h"
#include "engine/sampling/catmull_rom.h"
#include "engine/sampling/position_sampling.h"
#include "engine/sampling/spacing.h"
#include "engine/state/messages.h"
#include "engine/state/preferences.h"
#include "maya/extension/functions/bodies.h"
#include "maya/extension/python/types.h"
#include "maya/extension/values/sampler_object.h"

namespace vantorelix::maya {

namespace {

// --- preferences -------------------------------------------------------------------------------------------------

Ref opt_get_int(const Arguments& a) { return object_of(_opt_get_int(text(a, 0), value(a, 1))); }
Ref opt_get_float(const Arguments& a) { return object_of(_opt_get_float(text(a, 0), value(a, 1))); }
Ref opt_set_int(const Arguments& a) {
  _opt_set_int(text(a, 0), value(a, 1));
  return none();
}
Ref opt_set_float(const Arguments& a) {
  _opt_set_float(text(a, 0), value(a, 1));
  return none();
}

// --- sampling ----------------------------------------------------------------------------------------------------

Ref world_pos_at(const Arguments& a) { return object_of(_world_pos_at(text(a, 0), number(a, 1))); }

Ref make_fast_sampler(const Arguments& a) {
  const SamplerPtr sampler = _make_fast_sampler(text(a, 0));
  return sampler ? sampler_object(sampler) : none();
}

Ref sample_positions(const Arguments& a) {
  return object_of(_sample_positions(text(a, 0), number(a, 1), number(a, 2), number(a, 3), sampler_of(a[4])));
}

Ref keyframe_times(const Arguments& a) { return object_of(_keyframe_times(text(a, 0), number(a, 1), number(a, 2))); }

Ref sample_at_times(const Arguments& a) {
  return object_of(_sample_at_times(text(a, 0), numbers_of(a[1]), sampler_of(a[2])));
}

// --- spacing and filling -----------------------------------------------------------------------------------------

Ref smooth(const Arguments& a) {
  return object_of(_smooth(numbers_of(a[0]), a[1] ? integer_of(a[1]) : kSpacingWindow));
}

Ref t_from_spacing(const Arguments& a) {
  const host::Value given = value(a, 1);
  const auto [t, reference] = _t_from_spacing(numbers_of(a[0]), given);
  return tuple_of(t, same_or_new(a, 1, given, reference));
}

PyObject* next_index(PyObject* self) {
  return answer([&] {
    const auto index = content_of<_bisect_indices>(self).next();
    return index ? object_of(*index) : Ref();
  });
}

PyObject* order_type() {
  static PyType_Slot slots[] = {{Py_tp_iter, reinterpret_cast<void*>(PyObject_SelfIter)},
                                {Py_tp_iternext, reinterpret_cast<void*>(next_index)},
                                {0, nullptr}};
  static PyObject* const made = new_type<_bisect_indices>("Vantorelix_engine.BisectIndices", slots).release();
  return made;
}

Ref bisect_indices(const Arguments& a) { return new_instance(order_type(), _bisect_indices(integer_of(a[0]))); }

Ref catmull_point(const Arguments& a) {
  return object_of(_catmull_point(vector_of(a[0]), vector_of(a[1]), vector_of(a[2]), vector_of(a[3]), number(a, 4)));
}

Ref smooth_fill(const Arguments& a) {
  const std::int64_t n_total = integer_of(a[0]);
  SampleMap sampled(n_total);
  for (const auto& [index, position] : pairs_of(a[1])) sampled.set(integer_of(index.get()), vector_of(position.get()));
  return object_of(_smooth_fill(n_total, std::move(sampled)));
}

// --- colouring ---------------------------------------------------------------------------------------------------

Ref color_ramp(const Arguments& a) { return object_of(_color_ramp(number(a, 0))); }

Ref colors_from_positions(const Arguments& a) {
  const host::Value given = value(a, 1);
  const auto [colors, reference] = _colors_from_positions(vectors_of(a[0]), given);
  return tuple_of(colors, same_or_new(a, 1, given, reference));
}

Ref standard_colors(const Arguments& a) { return object_of(compute_standard_colors(value(a, 0))); }
Ref temperature_colors(const Arguments& a) {
  return object_of(compute_temperature_colors(value(a, 0), number(a, 1), number(a, 2)));
}
Ref beats_colors(const Arguments& a) {
  const std::vector<double> key_times = a.given(3) ? numbers_of(a[3]) : std::vector<double>{};
  return object_of(compute_beats_colors(value(a, 0), number(a, 1), number(a, 2), key_times));
}

}  // namespace

const std::vector<Function>& sampling_functions() {
  static const std::vector<Function> all = {
      {"_msg", "(text)", take<_msg>, "Shows a message to the user."},
      {"_set_msg_handler", "(fn)", take<_set_msg_handler>,
       "Redirects messages to a callable; anything else ends that."},
      {"_opt_get_int", "(name, default)", opt_get_int, "An option variable as an integer."},
      {"_opt_set_int", "(name, value)", opt_set_int, "Stores an integer option variable; failures are silent."},
      {"_opt_get_float", "(name, default)", opt_get_float, "An option variable as a float."},
      {"_opt_set_float", "(name, value)", opt_set_float, "Stores a float option variable; failures are silent."},
      {"_get_pref_samples", "()", result<_get_pref_samples>, "Samples per frame, at least 1."},
      {"_set_pref_samples", "(v)", take<_set_pref_samples>, "Stores the samples per frame, at least 1."},
      {"_get_pref_line_width", "()", result<_get_pref_line_width>, "Line width in pixels."},
      {"_set_pref_line_width", "(v)", take<_set_pref_line_width>, "Stores the line width."},
      {"_get_pref_point_size", "()", result<_get_pref_point_size>, "Dot size in pixels."},
      {"_set_pref_point_size", "(v)", take<_set_pref_point_size>, "Stores the dot size."},
      {"_get_pref_show_line", "()", result<_get_pref_show_line>, "Whether new trails show their line."},
      {"_set_pref_show_line", "(v)", take<_set_pref_show_line>, "Stores whether new trails show their line."},
      {"_get_pref_show_dots", "()", result<_get_pref_show_dots>, "Whether new trails show their dots."},
      {"_set_pref_show_dots", "(v)", take<_set_pref_show_dots>, "Stores whether new trails show their dots."},
      {"_get_pref_xray", "()", result<_get_pref_xray>, "Whether new trails are drawn through geometry."},
      {"_set_pref_xray", "(v)", take<_set_pref_xray>, "Stores whether new trails are drawn through geometry."},
      {"_get_pref_color_mode", "()", result<_get_pref_color_mode>, "The colour mode of new trails."},
      {"_set_pref_color_mode", "(v)", take<_set_pref_color_mode>, "Stores the colour mode of new trails."},
      {"_world_pos_at", "(obj, t)", world_pos_at, "World position of a node at a time, by attribute query."},
      {"_make_fast_sampler", "(obj)", make_fast_sampler, "A callable from time to world position, or None."},
      {"_sample_positions", "(obj, start, end, step, sampler=None)", sample_positions,
       "World positions from start to end."},
      {"_keyframe_times", "(obj, start, end)", keyframe_times, "Ascending key times of a node within a range."},
      {"_sample_at_times", "(obj, times, sampler=None)", sample_at_times, "One world position for each time."},
      {"_smooth", "(values, window=3)", smooth, "Centred running means of half-width window."},
      {"_t_from_spacing", "(dists, ref=None)", t_from_spacing,
       "Ramp parameters of segment lengths, and their reference."},
      {"_bisect_indices", "(n)", bisect_indices, "Iterator over 0..n-1: the ends first, then midpoints."},
      {"_catmull_point", "(p0, p1, p2, p3, u)", catmull_point, "Point of a uniform Catmull-Rom span."},
      {"_smooth_fill", "(n_total, sampled)", smooth_fill, "All positions from a few, {index: position}."},
      {"_color_ramp", "(t)", color_ramp, "Colour of the ramp at t in 0..1."},
      {"_colors_from_positions", "(pos, ref=None)", colors_from_positions, "Spacing colours, and their reference."},
      {"compute_standard_colors", "(n)", standard_colors, "n times the standard colour."},
      {"compute_temperature_colors", "(n, start_frame, frame_step)", temperature_colors,
       "Colours that part the past from the future."},
      {"compute_beats_colors", "(n, start_frame, frame_step, key_times)", beats_colors,
       "Colours that alternate from key to key."},
  };
  return all;
}

}  // namespace vantorelix::maya
