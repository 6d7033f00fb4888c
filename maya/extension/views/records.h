// The engine's records as a script sees them: mappings that show the record itself, and records made from mappings.
#pragma once

#include <memory>

#include "engine/state/state.h"
#include "maya/extension/python/python.h"

namespace vantorelix::maya {

// --- to Python: new references -----------------------------------------------------------------------------------

// The registry: a mutable mapping from viz names to settings.
Ref registry_object();
// One trail's settings: a mutable mapping.
Ref object_of(const std::shared_ptr<Settings>& settings);
// A work record, or None: a mapping with "gen", "items", "k", "start" and "end"; its items are mappings as well. Lists
// of samples are read as copies.
Ref object_of(const std::shared_ptr<WorkRecord>& work);

// --- to the engine -----------------------------------------------------------------------------------------------

// Settings that a script passed: those of one of our mappings, or a copy of a mapping of its own. Into the latter a new
// reference is written back.
class PassedSettings {
 public:
  explicit PassedSettings(PyObject* mapping);

  const std::shared_ptr<Settings>& settings() const { return settings_; }
  void write_back() const;

 private:
  std::shared_ptr<Settings> settings_;
  host::Value ref_before_;
  PyObject* script_ = nullptr;  // the script's own mapping, where it is one; borrowed
};

std::shared_ptr<Settings> settings_of(PyObject* mapping);
// None is not a record.
std::shared_ptr<WorkRecord> work_of(PyObject* mapping);

// The item that one of our mappings shows; null for any other object.
std::shared_ptr<WorkItem> item_in(PyObject* mapping);

// The value under a key of any mapping; null when there is none, or when it is None.
Ref item_or_none(PyObject* mapping, PyObject* key);

}  // namespace vantorelix::maya
