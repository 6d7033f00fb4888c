#include "engine/commands/create.h"

#include <memory>
#include <utility>
#include <vector>

#include "engine/bootstrap/plugin.h"
#include "engine/colour/colour.h"
#include "engine/rebuild/callbacks.h"
#include "engine/rebuild/triggers.h"
#include "engine/sampling/catmull_rom.h"
#include "engine/sampling/position_sampling.h"
#include "engine/sampling/spacing.h"
#include "engine/state/attempt.h"
#include "engine/state/constants.h"
#include "engine/state/messages.h"
#include "engine/state/preferences.h"
#include "engine/state/state.h"
#include "engine/trails/nodes.h"
#include "engine/trails/trail_data.h"
#include "engine/trails/viz_push.h"

namespace vantorelix {

namespace {

// What one call of create_trail shares between its objects. The settings stay as they were passed.
struct Request {
  host::Value samples_per_frame;
  host::Value line_width;
  host::Value point_size;
  host::Value show_line;
  host::Value show_dots;
  host::Value xray_mode;
  host::Value color_mode;
  std::string root = {};
  double start = 0.0;  // playback range, frames
  double end = 0.0;
  SampleTimes times = {};
  double deadline = 0.0;  // wall clock, for all objects together
};

// What could be sampled of one object before the deadline.
struct Draft {
  TrailData data;
  host::Value ref;        // none for an incomplete trail: interpolated positions give no lasting scale
  bool complete = false;  // positions and keys are exact
};

template <class Getter>
void fill_from(host::Value& argument, Getter preference) {
  if (argument.is_none()) argument = preference();
}

void fill_from_preferences(Request& request) {
  fill_from(request.samples_per_frame, _get_pref_samples);
  fill_from(request.line_width, _get_pref_line_width);
  fill_from(request.point_size, _get_pref_point_size);
  fill_from(request.show_line, _get_pref_show_line);
  fill_from(request.show_dots, _get_pref_show_dots);
  fill_from(request.xray_mode, _get_pref_xray);
  fill_from(request.color_mode, _get_pref_color_mode);
}

double frame_step(const Request& request) {
  return 1.0 / static_cast<double>(_samples_per_frame(request.samples_per_frame));
}

void read_playback_range(Request& request) {
  request.start = cmds->playbackOptions_min();
  request.end = cmds->playbackOptions_max();
  const double step = frame_step(request);
  request.times = {request.start, step, _sample_count(request.start, request.end, step)};
  request.deadline = interpreter->time() + _CREATE_BUDGET;
}

// Times in coverage-first order, some of them at a time.
class CoverageOrder {
 public:
  explicit CoverageOrder(const SampleTimes& times) : times_(times), order_(times.count) {}

  // Goes on to the next ones, `count` at most, and tells the sampler. False at the end.
  bool advance(std::size_t count, Sampler& sampler) {
    indices_.clear();
    coming_.clear();
    while (indices_.size() < count) {
      const auto index = order_.next();
      if (!index) break;
      indices_.push_back(*index);
      coming_.push_back(times_[static_cast<std::size_t>(*index)]);
    }
    if (!coming_.empty()) sampler.expect(coming_);
    return !coming_.empty();
  }
  const std::vector<std::int64_t>& indices() const { return indices_; }

 private:
  const SampleTimes& times_;
  _bisect_indices order_;
  std::vector<std::int64_t> indices_;
  std::vector<double> coming_;
};

// Samples in coverage-first order until the deadline, but at least two where the range has two. The first hint names
// these two alone: where the deadline has passed already, the host would work out any others in vain.
SampleMap sample_within_budget(Sampler& sampler, const Request& request) {
  constexpr std::size_t kFewest = 2;
  SampleMap sampled(request.times.count);
  CoverageOrder order(request.times);
  for (std::size_t count = kFewest; order.advance(count, sampler);
       count = sampled.size() == kFewest ? kExpectedAtOnce - kFewest : kExpectedAtOnce) {
    for (const std::int64_t index : order.indices()) {
      sampled.set(index, sampler(request.times[static_cast<std::size_t>(index)]));
      if (sampled.size() >= kFewest && interpreter->time() >= request.deadline) return sampled;
    }
  }
  return sampled;
}

// Nothing when the object has fewer than two samples.
std::optional<Draft> draft_trail(const std::string& obj, const Request& request) {
  SamplerPtr sampler = _make_fast_sampler(obj);
  if (!sampler) sampler = _make_slow_sampler(obj);
  SampleMap sampled = sample_within_budget(*sampler, request);
  if (sampled.size() < 2) return std::nullopt;
  const bool all_sampled = sampled.size() == request.times.size();

  Draft draft;
  auto pos = std::make_shared<const std::vector<Position>>(
      all_sampled ? sampled.take() : _smooth_fill(request.times.count, std::move(sampled)));
  auto key_pos = std::make_shared<std::vector<Position>>();
  const bool did_keys = interpreter->time() < request.deadline;
  if (did_keys) {
    draft.data.key_times = _keyframe_times(obj, request.start, request.end);
    *key_pos = _sample_at_times(obj, draft.data.key_times, sampler);
  }
  auto [colors, full_ref] = _colors_from_positions(*pos);
  if (all_sampled) draft.ref = full_ref;
  draft.complete = all_sampled && did_keys;
  draft.data.viz = {std::move(pos), std::make_shared<const std::vector<Colour>>(std::move(colors)), key_pos,
                    _key_colors(key_pos->size())};
  return draft;
}

// The viz transform's name, as the host gave it.
std::string make_viz_node(const std::string& viz_name, const std::string& root) {
  const std::string shape = cmds->createNode(NODE_TYPE, viz_name + "Shape");
  const std::vector<std::string> parents = cmds->listRelatives_parent(shape);
  if (parents.empty())
    throw host::Error("'" + shape + "' has no transform above it; load the engine's own Vantorelix_plugin.py",
                      host::ErrorKind::type);
  std::string viz_tr = cmds->rename(parents.front(), viz_name);
  cmds->parent(viz_tr, root);
  return viz_tr;
}

void set_display(const std::string& viz_tr, const Request& request) {
  std::string attribute = _first_shape(viz_tr) + ".";
  const std::size_t before = attribute.size();
  const auto set = [&](const char* name, const host::Value& value) {
    attribute.resize(before);  // one string for all of them
    cmds->setAttr(attribute += name, value);
  };
  set("lineWidth", request.line_width);
  set("pointSize", request.point_size);
  set("showLine", request.show_line);
  set("showDots", request.show_dots);
  attempt([&] { set("xrayMode", request.xray_mode); });
  attempt([&] { set("colorMode", request.color_mode.to_int()); });
  set("startFrame", cmds->playbackOptions_min());
  set("frameStep", frame_step(request));
}

void register_trail(const std::string& viz_tr, const std::string& obj, const Request& request, const Draft& draft) {
  auto settings = std::make_shared<Settings>();
  settings->set("source", obj);
  settings->set("samples_per_frame", request.samples_per_frame);
  settings->set("ref", draft.ref);
  _REGISTRY.set(viz_tr, std::move(settings));
}

enum class Outcome { skipped, provisional, exact };

Outcome create_one(const std::string& obj, const Request& request) {
  const std::string viz_name = "vlx_" + _short_name(obj) + "_viz";
  if (cmds->objExists(viz_name)) cmds->delete_(viz_name);
  _REGISTRY.erase(viz_name);
  const std::optional<Draft> draft = draft_trail(obj, request);
  if (!draft) return Outcome::skipped;
  const std::string viz_tr = make_viz_node(viz_name, request.root);
  _push_data_to_viz(viz_tr, draft->data.viz, &draft->data.key_times);
  set_display(viz_tr, request);
  register_trail(viz_tr, obj, request, *draft);
  return draft->complete ? Outcome::exact : Outcome::provisional;
}

// Making nodes selects them; the user keeps the selection they had, less what has gone.
void restore_selection(const std::vector<std::string>& selection) {
  std::vector<std::string> keep;
  for (const std::string& obj : selection) {
    if (cmds->objExists(obj)) keep.push_back(obj);
  }
  if (keep.empty()) {
    cmds->select_clear();
  } else {
    cmds->select_replace(keep);
  }
}

}  // namespace

void create_trail(host::Value samples_per_frame, host::Value line_width, host::Value point_size, host::Value show_line,
                  host::Value show_dots, host::Value xray_mode, host::Value color_mode) {
  Request request{std::move(samples_per_frame), std::move(line_width), std::move(point_size), std::move(show_line),
                  std::move(show_dots),         std::move(xray_mode),  std::move(color_mode)};
  fill_from_preferences(request);
  const std::vector<std::string> selection = cmds->ls_selection();
  if (selection.empty()) {
    _msg("Select an animated object first.");
    return;
  }
  _ensure_plugin();  // a plug-in that cannot be loaded shows when the node is made
  request.root = _ensure_root();
  read_playback_range(request);

  std::size_t created = 0;
  bool needs_fill = false;
  for (const std::string& obj : selection) {
    const Outcome outcome = create_one(obj, request);
    if (outcome != Outcome::skipped) ++created;
    if (outcome == Outcome::provisional) needs_fill = true;
  }
  _ensure_callback();
  if (needs_fill) _schedule_rebuild();
  _ensure_trails_visible();
  restore_selection(selection);
  const std::string count = std::to_string(created);
  _msg(needs_fill ? "Building trail for " + count + " object(s)..." : "Trail built for " + count + " object(s).");
  cmds->refresh();
}

std::string _ensure_root() {
  if (!cmds->objExists(TRAIL_ROOT)) cmds->group_empty(TRAIL_ROOT);
  attempt([] {
    cmds->setAttr(TRAIL_ROOT + ".overrideEnabled", 1);
    cmds->setAttr(TRAIL_ROOT + ".overrideDisplayType", 2);
  });
  return TRAIL_ROOT;
}

void _ensure_trails_visible() {
  std::vector<std::string> panels;
  attempt([&] { panels = cmds->getPanel_model(); });
  for (const std::string& panel : panels) {
    for (const std::string& flag : _VIEWPORT_TRAIL_FLAGS) {
      attempt([&] {
        if (!cmds->modelEditor_query(panel, flag)) cmds->modelEditor_enable(panel, flag);
      });
    }
  }
}

}  // namespace vantorelix
