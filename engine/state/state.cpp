#include "engine/state/state.h"

#include <limits>
#include <utility>

#include "base/paths.h"

namespace vantorelix {

ModuleState module_state;

namespace {

// Absolute, so that it stays the same wherever the host changes its current folder to.
std::string plugin_beside(const std::string& module_file) {
  const std::string name = "Vantorelix_plugin.py";
  if (module_file.empty()) return name;
  return paths::join(paths::directory_name(paths::absolute(module_file)), name);
}

}  // namespace

struct WorkItemStore {
  std::size_t size = 0;
  std::shared_ptr<const Registry::Snapshot> trails;  // of which items are made
  std::vector<std::shared_ptr<WorkItem>> items;      // the first ones, made so far
  WorkItemStore* next = nullptr;                     // discarded before this one
};

WorkItems::WorkItems(std::shared_ptr<const Registry::Snapshot> trails) : store_(new WorkItemStore) {
  store_->size = trails->size();
  store_->items.reserve(store_->size);  // and not filled: nothing is written before an item is made
  store_->trails = std::move(trails);
}

WorkItems::WorkItems(std::vector<std::shared_ptr<WorkItem>> items) : store_(new WorkItemStore) {
  store_->size = items.size();
  store_->items = std::move(items);
}

WorkItems::~WorkItems() {
  if (!store_) return;
  store_->next = std::exchange(module_state.discarded, store_);
}

std::size_t WorkItems::size() const { return store_ ? store_->size : 0; }

std::shared_ptr<WorkItem> WorkItems::at(std::size_t n) const {
  auto& items = store_->items;
  while (items.size() <= n) {
    const auto& [viz, settings] = (*store_->trails)[items.size()];
    auto made = std::make_shared<WorkItem>();
    made->viz = viz;
    made->settings = settings;
    items.push_back(std::move(made));
  }
  return items[n];
}

namespace {

template <class T>
T taken_from(std::vector<T>& values) {
  T last = std::move(values.back());
  values.pop_back();
  return last;
}

}  // namespace

void free_discarded_items(std::size_t count) {
  // Each piece is out of its place before it goes: what goes may run the host's code, and that may come here again.
  for (; count > 0 && module_state.discarded; --count) {
    WorkItemStore& last = *module_state.discarded;
    if (!last.items.empty()) {
      taken_from(last.items);
    } else if (last.trails.use_count() == 1 && !last.trails->empty()) {
      taken_from(const_cast<Registry::Snapshot&>(*last.trails));  // nobody else sees it any more
    } else {
      const std::unique_ptr<WorkItemStore> empty(std::exchange(module_state.discarded, last.next));
    }
  }
}

namespace {

// What was remembered goes last, when everything is new: letting go of it may run the host's code. What that discards
// goes too: neither a reload nor an end is a slice, and the host may be going.
void start_anew(ModuleState state) {
  state.discarded = std::exchange(module_state.discarded, nullptr);
  std::swap(module_state, state);
}

constexpr auto kAll = std::numeric_limits<std::size_t>::max();

}  // namespace

void _initialise(const Handles& handles) {
  ModuleState state;
  state.cmds = handles.cmds;
  state.om = handles.om;
  state.oma = handles.oma;
  state.interpreter = handles.interpreter;
  state.PLUGIN_FILE = plugin_beside(handles.interpreter->module_file());
  start_anew(std::move(state));
  free_discarded_items(kAll);
}

void _forget() {
  start_anew({});
  free_discarded_items(kAll);
}

// clang-format off
const std::vector<std::string> __all__ = {
    // The interpreter's own facilities and the host's handles.
    "os", "sys", "time", "bisect_left", "bisect_right", "cmds", "om", "oma",
    // Constants and state.
    "SCRIPT_NAME", "SCRIPT_VERSION", "PLUGIN_FILE", "PLUGIN_BASENAME", "NODE_TYPE", "TRAIL_ROOT",
    "OPT_SAMPLES", "OPT_LINE_WIDTH", "OPT_POINT_SIZE", "OPT_SHOW_LINE", "OPT_SHOW_DOTS", "OPT_XRAY", "OPT_COLOR_MODE",
    "_REGISTRY", "_CB_ID", "_REBUILDING", "_GEN", "_PENDING", "_WORK", "_LAST_EDIT", "_MSG_HANDLER",
    "_CHUNK_BUDGET", "_DEBOUNCE", "_CREATE_BUDGET", "_SPACING_RED_MULT", "_VIEWPORT_TRAIL_FLAGS", "_RAMP_STOPS",
    // Messages and preferences.
    "_msg", "_set_msg_handler",
    "_opt_get_int", "_opt_set_int", "_opt_get_float", "_opt_set_float",
    "_get_pref_samples", "_set_pref_samples", "_get_pref_line_width", "_set_pref_line_width",
    "_get_pref_point_size", "_set_pref_point_size", "_get_pref_show_line", "_set_pref_show_line",
    "_get_pref_show_dots", "_set_pref_show_dots", "_get_pref_xray", "_set_pref_xray",
    "_get_pref_color_mode", "_set_pref_color_mode",
    // Sampling and colouring.
    "_world_pos_at", "_make_fast_sampler", "_sample_positions", "_keyframe_times", "_sample_at_times",
    "_smooth", "_t_from_spacing", "_bisect_indices", "_catmull_point", "_smooth_fill",
    "_color_ramp", "_colors_from_positions",
    "compute_standard_colors", "compute_temperature_colors", "compute_beats_colors",
    // Trails.
    "_compute_trail_data", "_set_vector_array_attr", "_push_data_to_viz", "_update_frame_attrs",
    "create_trail", "_ensure_root", "_ensure_trails_visible",
    "has_any_trail", "trail_count", "clear_trails", "convert_to_nurbs",
    // Live rebuild.
    "_rebuild_step", "_finish_trail",
    "_schedule_rebuild", "_rebuild_all_sync", "_rebuild_all", "_rebuild_one", "_is_file_io", "_is_playing",
    "_on_anim_edit", "_ensure_callback", "_remove_callback", "apply_prefs_to_existing_trails",
    // Display commands, plug-in, entry.
    "set_color_mode", "set_ghost", "toggle_ghost",
    "_maya_user_plugins_dir", "_stage_plugin_in_safe_dir", "_candidate_plugin_paths", "_whitelist_folder",
    "_ensure_plugin_path_env", "_ensure_plugin",
    "pellark_entry", "_open_menu",
};
// clang-format on

}  // namespace vantorelix
