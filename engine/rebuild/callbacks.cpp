#include "engine/rebuild/callbacks.h"

#include <exception>
#include <utility>
#include <vector>

#include "engine/rebuild/queue.h"
#include "engine/rebuild/triggers.h"
#include "engine/state/attempt.h"
#include "engine/state/constants.h"
#include "engine/state/state.h"

namespace vantorelix {

constinit const host::Callback _ON_ANIM_EDIT{"_on_anim_edit", &_on_anim_edit};

void _on_anim_edit() { _schedule_rebuild(); }

void _ensure_callback() {
  if (_CB_ID) return;
  std::vector<host::Value> ids;
  try {
    ids.push_back(oma->addAnimCurveEditedCallback(_ON_ANIM_EDIT));
  } catch (const std::exception& error) {
    cmds->warning("[" + SCRIPT_NAME + "] callback register fail: " + error.what());
  }
  // The first is what a trail lives on, so only its failure is worth a warning.
  attempt([&] { ids.push_back(oma->addAnimKeyframeEditedCallback(_ON_ANIM_EDIT)); });
  attempt([&] { ids.push_back(om->addNodeRemovedCallback(_ON_ANIM_EDIT, "animCurve")); });
  if (!ids.empty()) put(_CB_ID, std::optional<CallbackIds>(std::move(ids)));
}

void _remove_callback() {
  _stop_rebuild_queue();
  if (!_CB_ID) return;
  const CallbackIds installed = *_CB_ID;
  const auto* several = std::get_if<std::vector<host::Value>>(&installed);
  const std::vector<host::Value> ids = several ? *several : std::vector{std::get<host::Value>(installed)};
  for (const host::Value& id : ids) attempt([&] { om->removeCallback(id); });
  put(_CB_ID, {});
}

}  // namespace vantorelix
