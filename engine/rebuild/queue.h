// The rebuild queue: resumable slices of about _CHUNK_BUDGET seconds, driven by deferred calls.
#pragma once

#include "engine/state/state.h"

namespace vantorelix {

// One slice. Only ever called by the host, as a deferred call that _schedule_rebuild or this function queued.
void _rebuild_step();

// Colours a completely sampled item, keeps its first spacing reference, and pushes it to its viz node. An item with
// fewer than two positions leaves the node as it is.
void _finish_trail(WorkItem& it, const WorkRecord& work);

// The callback under which the step is queued.
extern const host::Callback _REBUILD_STEP;

// Queues the step as a deferred call of the lowest priority; false when the host refuses.
bool _defer_rebuild_step();
// Back to idle: nothing pending, no work. A step that is already queued then finds nothing to do.
void _stop_rebuild_queue();

}  // namespace vantorelix
