#include "engine/rebuild/queue.h"

#include <memory>
#include <utility>

#include "base/large_pages.h"
#include "engine/colour/colour.h"
#include "engine/rebuild/triggers.h"
#include "engine/sampling/limits.h"
#include "engine/sampling/position_sampling.h"
#include "engine/state/attempt.h"
#include "engine/state/constants.h"
#include "engine/trails/nodes.h"
#include "engine/trails/trail_data.h"
#include "engine/trails/viz_push.h"
#include "host/error.h"

namespace vantorelix {

constinit const host::Callback _REBUILD_STEP{"_rebuild_step", &_rebuild_step};

namespace {

bool must_wait() { return _is_file_io() || _is_playing() || interpreter->time() - _LAST_EDIT < _DEBOUNCE; }

// Queues exactly one successor of this step. Where the host refuses, the queue stops without a message, and the next
// edit starts it again.
void defer_successor() {
  if (!_defer_rebuild_step()) _stop_rebuild_queue();
}

std::shared_ptr<WorkRecord> fresh_record() {
  auto work = std::make_shared<WorkRecord>();
  work->gen = _GEN;
  work->items = WorkItems(_REGISTRY.snapshot());
  work->start = cmds->playbackOptions_min();
  work->end = cmds->playbackOptions_max();
  return work;
}

void plan(WorkItem& it, const WorkRecord& work, const std::string& obj) {
  const double step_len = 1.0 / static_cast<double>(_samples_per_frame(it.settings->at("samples_per_frame")));
  it.times = SampleTimes{work.start, step_len, _sample_count(work.start, work.end, step_len)};
  reserve(*it.pos, reservation(it.times->count));
  it.sampler = _make_fast_sampler(obj);
}

// Appends the positions at times[next], times[next + 1], ... and stops after the first that ends at or past the
// deadline. True when none is left.
template <class Times>
bool sample_until(double deadline, const Times& times, std::size_t& next, std::vector<Position>& out,
                  Sampler& sampler) {
  OrderedSampler ordered(sampler, times);
  while (next < times.size()) {
    out.push_back(ordered.at(next));
    ++next;
    if (interpreter->time() >= deadline) break;
  }
  return next >= times.size();
}

// Takes an item as far as it gets. False when the deadline stopped it between two samples: the next step resumes it.
// Any call of the host may run another step inside this one, on the same item too. What both append stays, so `i` and
// `ki` may pass the number of times: compare them with >=, never with ==.
bool advance_item(WorkItem& it, const WorkRecord& work, double deadline) {
  const std::string obj = _source_of(*it.settings);
  if (_drop_vanished(obj, it.viz)) return true;
  if (!it.times) plan(it, work, obj);
  const SamplerPtr sampler = it.sampler ? it.sampler : _make_slow_sampler(obj);
  if (!sample_until(deadline, *it.times, it.i, *it.pos, *sampler)) return false;
  if (!it.ktimes) {
    it.ktimes = _keyframe_times(obj, work.start, work.end);
    it.kpos->reserve(it.ktimes->size());
  }
  if (!sample_until(deadline, *it.ktimes, it.ki, *it.kpos, *sampler)) return false;
  _finish_trail(it, work);
  return true;
}

// As advance_item; an item that fails is reported and left behind for this generation.
bool advance_guarded(WorkItem& it, const WorkRecord& work, double deadline) {
  try {
    return advance_item(it, work, deadline);
  } catch (const std::exception& error) {
    attempt([&] { _warn_rebuild_failed(it.viz, error); });
    return true;
  }
}

void work_until(double deadline, WorkRecord& work) {
  while (work.k < work.items.size() && interpreter->time() < deadline) {
    if (work.k >= work.items.size()) return;  // reading the clock ran another step, which has done the rest
    const std::shared_ptr<WorkItem> it = work.items.at(work.k);
    if (!advance_guarded(*it, work, deadline)) return;
    ++work.k;
    free_discarded_items(kFreedWithItem);
  }
}

}  // namespace

void _rebuild_step() {
  if (!_PENDING) return;  // queued before the queue was stopped
  if (_REGISTRY.empty()) return _stop_rebuild_queue();
  if (must_wait()) {
    free_discarded_items(kFreedWhileWaiting);
    return defer_successor();
  }
  if (!_WORK || _WORK->gen != _GEN) put(_WORK, fresh_record());
  const std::shared_ptr<WorkRecord> work = _WORK;
  work_until(interpreter->time() + _CHUNK_BUDGET, *work);
  if (work->k >= work->items.size()) {
    put(_WORK, {});
    if (work->gen == _GEN) {
      _PENDING = false;
      attempt([] { cmds->refresh(); });
      return;
    }
  }
  defer_successor();
}

void _finish_trail(WorkItem& it, const WorkRecord& work) {
  Settings& settings = *it.settings;
  if (it.pos->size() < 2) return;
  auto [colors, ref] = _colors_from_positions(*it.pos, settings.get("ref"));
  _keep_first_ref(settings, ref);
  const VizData data{it.pos, std::make_shared<const std::vector<Colour>>(std::move(colors)), it.kpos,
                     _key_colors(it.kpos->size())};
  const std::vector<double> none;
  _push_data_to_viz(it.viz, data, it.ktimes ? &*it.ktimes : &none);
  const auto spf = static_cast<double>(_samples_per_frame(settings.get("samples_per_frame", 1)));
  _update_frame_attrs(it.viz, work.start, 1.0 / spf);
}

bool _defer_rebuild_step() {
  return attempt([] { cmds->evalDeferred(_REBUILD_STEP); });
}

void _stop_rebuild_queue() {
  _PENDING = false;
  put(_WORK, {});
}

}  // namespace vantorelix
