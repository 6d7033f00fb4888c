#include "engine/rebuild/triggers.h"

#include <cstdint>

#include "engine/rebuild/queue.h"
#include "engine/state/attempt.h"
#include "engine/state/constants.h"
#include "engine/trails/nodes.h"
#include "engine/trails/trail_data.h"
#include "engine/trails/viz_push.h"

namespace vantorelix {

namespace {

// Marks the rebuild as running for as long as it lives, whatever ends it.
class RebuildingMark {
 public:
  RebuildingMark() { _REBUILDING = true; }
  ~RebuildingMark() { _REBUILDING = false; }
  RebuildingMark(const RebuildingMark&) = delete;
  RebuildingMark& operator=(const RebuildingMark&) = delete;
};

// True when the host runs without an interface and every trail has been rebuilt. A failure, of the query or of the
// rebuild, leaves the work to the deferred queue.
bool rebuilt_in_batch_mode() {
  bool batch = false;
  const bool succeeded = attempt([&] {
    batch = cmds->about_batch();
    if (batch) _rebuild_all_sync();
  });
  return succeeded && batch;
}

}  // namespace

void _schedule_rebuild() {
  if (_REGISTRY.empty()) return;
  if (_is_file_io()) return;
  // Before the test of _PENDING: an edit during a rebuild makes the work in progress stale and prolongs the debounce.
  _GEN = static_cast<std::int64_t>(static_cast<std::uint64_t>(_GEN) +
                                   1);  // wraps: a script may have set it to the largest
  _LAST_EDIT = interpreter->time();
  free_discarded_items(kFreedWithEdit);
  if (_PENDING) return;
  if (rebuilt_in_batch_mode()) return;
  _PENDING = true;
  _REGISTRY.snapshot();  // made here, while the user waits for nothing, so that the first slice finds it ready
  if (_defer_rebuild_step()) return;
  _PENDING = false;
  _rebuild_all_sync();
}

void _rebuild_all_sync() {
  if (_REBUILDING) return;
  const RebuildingMark mark;
  _rebuild_all();
}

void _rebuild_all() {
  const auto trails = _REGISTRY.snapshot();
  for (const auto& [viz_tr, settings] : *trails) {
    try {
      _rebuild_one(viz_tr, settings);
    } catch (const std::exception& error) {
      _warn_rebuild_failed(viz_tr, error);
    }
  }
}

void _rebuild_one(const std::string& viz_tr, const std::shared_ptr<Settings>& settings) {
  const std::string obj = _source_of(*settings);
  if (_drop_vanished(obj, viz_tr)) return;
  const auto computed = _compute_trail_data(obj, settings->at("samples_per_frame"), settings->get("ref"));
  if (!computed) return;
  const auto& [data, ref] = *computed;
  _keep_first_ref(*settings, ref);
  _push_data_to_viz(viz_tr, data.viz, &data.key_times);
  const double start = cmds->playbackOptions_min();
  _update_frame_attrs(viz_tr, start, 1.0 / static_cast<double>(_samples_per_frame(settings->at("samples_per_frame"))));
}

bool _drop_vanished(const std::string& obj, const std::string& viz_tr) {
  if (cmds->objExists(obj) && cmds->objExists(viz_tr)) return false;
  if (cmds->objExists(viz_tr)) cmds->delete_(viz_tr);
  _REGISTRY.erase(viz_tr);
  return true;
}

void _keep_first_ref(Settings& settings, const host::Value& ref) {
  if (settings.get("ref").is_none() && ref.truthy()) settings.set("ref", ref);
}

void _warn_rebuild_failed(const std::string& viz_tr, const std::exception& error) {
  cmds->warning("[" + SCRIPT_NAME + "] rebuild fail " + viz_tr + ": " + error.what());
}

bool _is_file_io() {
  bool busy = false;
  attempt([&] { busy = om->isReadingFile() || om->isWritingFile() || om->isOpeningFile() || om->isNewingFile(); });
  return busy;
}

bool _is_playing() {
  bool playing = false;
  attempt([&] { playing = oma->isPlaying(); });
  return playing;
}

}  // namespace vantorelix
