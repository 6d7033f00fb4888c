// The entrance to live rebuilding, its guards, and the rebuild in one go.
#pragma once

#include <exception>
#include <memory>
#include <string>

#include "engine/state/state.h"

namespace vantorelix {

// Notes an edit and sees to it that exactly one rebuild step is queued. Constant work, except in batch mode and when
// the host cannot defer: then every trail is rebuilt at once.
void _schedule_rebuild();

// Rebuilds every registered trail now. Does nothing when it is already running.
void _rebuild_all_sync();
void _rebuild_all();
// Throws what the trail's computation throws. A trail whose nodes are gone is dropped.
void _rebuild_one(const std::string& viz_tr, const std::shared_ptr<Settings>& settings);

// Drops the trail when its source or viz transform is gone: deletes what is left of it and its registry entry.
// True when it did.
bool _drop_vanished(const std::string& obj, const std::string& viz_tr);
// Keeps `ref` as the trail's spacing reference unless it has one.
void _keep_first_ref(Settings& settings, const host::Value& ref);

// The one warning about a trail that could not be rebuilt.
void _warn_rebuild_failed(const std::string& viz_tr, const std::exception& error);

// False on any error.
bool _is_file_io();
bool _is_playing();

}  // namespace vantorelix
