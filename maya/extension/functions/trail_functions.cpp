// Trails, the live rebuild, the commands, the plug-in and the entry.
#include "engine/bootstrap/plugin.h"
#include "engine/commands/apply_preferences.h"
#include "engine/commands/clear.h"
#include "engine/commands/create.h"
#include "engine/commands/display.h"
#include "engine/commands/entry.h"
#include "engine/commands/nurbs.h"
#include "engine/rebuild/callbacks.h"
#include "engine/rebuild/queue.h"
#include "engine/rebuild/triggers.h"
#include "engine/trails/queries.h"
#include "engine/trails/trail_data.h"
#include "engine/trails/viz_push.h"
#include "host/error.h"
#include "maya/extension/functions/bodies.h"
#include "maya/extension/values/sampler_object.h"
#include "maya/extension/values/sources.h"
#include "maya/extension/views/records.h"

namespace vantorelix::maya {

namespace {

// --- data --------------------------------------------------------------------------------------------------------

Ref compute_trail_data(const Arguments& a) {
  const host::Value given = value(a, 2);
  const auto computed = _compute_trail_data(text(a, 0), value(a, 1), given, sampler_of(a[3]));
  if (!computed) return none();
  const auto& [data, reference] = *computed;
  const Ref full =
      tuple_of(*data.viz.positions, *data.viz.colors, *data.viz.key_positions, *data.viz.key_colors, data.key_times);
  return tuple_of(full, same_or_new(a, 2, given, reference));
}

Ref set_vector_array_attr(const Arguments& a) {
  _set_vector_array_attr(text(a, 0), text(a, 1), vectors_from(a[2]));
  return none();
}

// The four sequences of trail data.
VizData viz_data_of(PyObject* data) {
  const Ref four = checked(PySequence_Tuple(data));
  const Py_ssize_t n = PyTuple_GET_SIZE(four.get());
  if (n > 4) throw host::Error("too many values to unpack (expected 4)", host::ErrorKind::value);
  if (n < 4)
    throw host::Error("not enough values to unpack (expected 4, got " + std::to_string(n) + ")",
                      host::ErrorKind::value);
  const auto part = [&](Py_ssize_t i) { return vectors_from(PyTuple_GET_ITEM(four.get(), i)); };
  return {part(0), part(1), part(2), part(3)};
}

// Key times that are not numbers are left out, as a node is that cannot take them.
std::optional<std::vector<double>> times_or_nothing(PyObject* times) {
  try {
    return numbers_of(times);
  } catch (const host::Error&) {
    return std::nullopt;
  }
}

Ref push_data_to_viz(const Arguments& a) {
  const VizData data = viz_data_of(a[1]);
  const auto key_times = a.given(2) ? times_or_nothing(a[2]) : std::nullopt;
  _push_data_to_viz(text(a, 0), data, key_times ? &*key_times : nullptr);
  return none();
}

Ref update_frame_attrs(const Arguments& a) {
  _update_frame_attrs(text(a, 0), value(a, 1), value(a, 2));
  return none();
}

// --- trails ------------------------------------------------------------------------------------------------------

Ref create(const Arguments& a) {
  create_trail(value(a, 0), value(a, 1), value(a, 2), value(a, 3), value(a, 4), value(a, 5), value(a, 6));
  return none();
}

Ref to_nurbs(const Arguments& a) {
  convert_to_nurbs(value(a, 0, 3));
  return none();
}

// --- the live rebuild --------------------------------------------------------------------------------------------

std::shared_ptr<std::vector<Position>> samples_of(PyObject* item, PyObject* key) {
  const Ref list = item_or_none(item, key);
  return list ? vectors_from(list.get()) : std::make_shared<std::vector<Position>>();
}

Ref finish_trail(const Arguments& a) {
  const auto given = work_of(a[1]);
  const auto work = given ? given : std::make_shared<WorkRecord>();
  if (const auto item = item_in(a[0])) {
    _finish_trail(*item, *work);
    return none();
  }
  const Ref settings_object = checked(PyObject_GetItem(a[0], name<"settings">()));
  const PassedSettings settings(settings_object.get());
  WorkItem item;
  item.viz = text_of(checked(PyObject_GetItem(a[0], name<"viz">())).get());
  item.settings = settings.settings();
  item.pos = samples_of(a[0], name<"pos">());
  item.kpos = samples_of(a[0], name<"kpos">());
  if (const Ref key_times = item_or_none(a[0], name<"ktimes">())) item.ktimes = numbers_of(key_times.get());
  _finish_trail(item, *work);
  settings.write_back();
  return none();
}

Ref rebuild_one(const Arguments& a) {
  const PassedSettings settings(a[1]);
  _rebuild_one(text(a, 0), settings.settings());
  settings.write_back();
  return none();
}

Ref apply_prefs(const Arguments& a) {
  apply_prefs_to_existing_trails(a[0] && truth(a[0]));
  return none();
}

// --- commands, plug-in, entry ------------------------------------------------------------------------------------

Ref ghost(const Arguments& a) {
  set_ghost(value(a, 0, true));
  return none();
}

Ref stage_plugin(const Arguments& a) { return object_of(_stage_plugin_in_safe_dir(text(a, 0))); }
Ref whitelist_folder(const Arguments& a) {
  _whitelist_folder(text(a, 0));
  return none();
}
Ref plugin_path_env(const Arguments& a) {
  _ensure_plugin_path_env(text(a, 0));
  return none();
}

}  // namespace

const std::vector<Function>& trail_functions() {
  static const std::vector<Function> all = {
      {"_compute_trail_data", "(obj, samples_per_frame, ref=None, sampler=None)", compute_trail_data,
       "Everything that a trail shows, in one go, and its spacing reference; or None."},
      {"_set_vector_array_attr", "(node, attr, values)", set_vector_array_attr, "Replaces a vector array of a node."},
      {"_push_data_to_viz", "(viz_tr, data, key_times=None)", push_data_to_viz, "Puts trail data on a viz node."},
      {"_update_frame_attrs", "(viz_tr, start, step)", update_frame_attrs,
       "Sets start frame and frame step; best effort."},
      {"create_trail",
       "(samples_per_frame=None, line_width=None, point_size=None, show_line=None, show_dots=None, xray_mode=None, "
       "color_mode=None)",
       create, "Makes a trail for each selected object. What is not given is the user's preference."},
      {"_ensure_root", "()", result<_ensure_root>, "The group of all trails, made if need be."},
      {"_ensure_trails_visible", "()", run<_ensure_trails_visible>, "Switches trails on in every model panel."},
      {"has_any_trail", "()", result<has_any_trail>, "Whether the scene has a trail."},
      {"trail_count", "()", result<trail_count>, "How many trails the scene has."},
      {"clear_trails", "()", run<clear_trails>, "Removes all trails and stops listening."},
      {"convert_to_nurbs", "(degree=3)", to_nurbs, "Makes a NURBS curve of each trail, or of the selected ones."},
      {"_rebuild_step", "()", run<_rebuild_step>, "One slice of the live rebuild."},
      {"_finish_trail", "(it, work)", finish_trail, "Colours a sampled item and puts it on its node."},
      {"_schedule_rebuild", "(*args)", run<_schedule_rebuild>, "Notes an edit: all trails are rebuilt soon."},
      {"_rebuild_all_sync", "(*args)", run<_rebuild_all_sync>, "Rebuilds all trails now, unless it is being done."},
      {"_rebuild_all", "()", run<_rebuild_all>, "Rebuilds all trails now."},
      {"_rebuild_one", "(viz_tr, settings)", rebuild_one, "Rebuilds one trail now."},
      {"_is_file_io", "()", result<_is_file_io>, "Whether a scene file is being read or written."},
      {"_is_playing", "()", result<_is_playing>, "Whether the scene is being played."},
      {"_on_anim_edit", "(*args)", run<_on_anim_edit>, "What listens to animation edits."},
      {"_ensure_callback", "()", run<_ensure_callback>, "Listens to animation edits."},
      {"_remove_callback", "()", run<_remove_callback>, "Stops listening, and the queue."},
      {"apply_prefs_to_existing_trails", "(rebuild_if_samples_changed=False)", apply_prefs,
       "Brings all trails in line with the preferences."},
      {"set_color_mode", "(mode)", take<set_color_mode>, "Shows all trails in a colour mode, 0 to 3."},
      {"set_ghost", "(on=True)", ghost, "Draws all trails through geometry, or not."},
      {"toggle_ghost", "()", run<toggle_ghost>, "Switches drawing through geometry."},
      {"_maya_user_plugins_dir", "()", result<_maya_user_plugins_dir>, "The user's plug-ins folder."},
      {"_stage_plugin_in_safe_dir", "(src_path)", stage_plugin, "Copies the plug-in there; the path to load."},
      {"_candidate_plugin_paths", "()", result<_candidate_plugin_paths>, "Where the plug-in is looked for, in order."},
      {"_whitelist_folder", "(folder)", whitelist_folder, "Allows plug-ins of a folder in safe mode."},
      {"_ensure_plugin_path_env", "(folder)", plugin_path_env, "Adds a folder to the plug-in path."},
      {"_ensure_plugin", "()", result<_ensure_plugin>, "Loads the node plug-in; whether it is loaded."},
      {"pellark_entry", "(action=None)",
       [](const Arguments& a) {
         pellark_entry(value(a, 0));
         return none();
       },
       "Does what a gesture or a command name stands for."},
      {"_open_menu", "()", result<_open_menu>, "Opens the mini menu; whether there is one."},
  };
  return all;
}

}  // namespace vantorelix::maya
