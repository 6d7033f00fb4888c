// Everything the module remembers, and its one owner. docs/state.md says who writes and who reads each of these.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "base/vector.h"
#include "engine/state/ordered_map.h"
#include "engine/state/sample_times.h"
#include "host/command_layer.h"
#include "host/interpreter.h"
#include "host/object_model.h"
#include "host/value.h"

namespace vantorelix {

class Sampler;

using Position = Vector;  // world space, the scene's linear unit
using Colour = Vector;    // r, g, b in 0..1

// A trail's settings: "source" (long name of the animated object), "samples_per_frame" (as it was passed), "ref"
// (spacing reference: none, or a one-element list with the baseline spacing). Keys may be missing: a script can
// delete them, and each reader says what it then does.
using Settings = OrderedMap<host::Value>;

using Registry = OrderedMap<std::shared_ptr<Settings>>;  // viz transform name -> settings

// One trail's place in the rebuild queue. Invariants: *pos has exactly i entries, kpos exactly ki; neither ever
// shrinks. Shared by its record, by the step that works on it and by whoever looks at it.
struct WorkItem {
  std::string viz;                     // the registry key: the viz transform's name
  std::shared_ptr<Settings> settings;  // shared with the registry: a "ref" stored here lands there
  std::shared_ptr<Sampler> sampler;    // null until planned, or where only the slow query works
  std::optional<SampleTimes> times;    // nothing until planned
  std::shared_ptr<std::vector<Position>> pos = std::make_shared<std::vector<Position>>();
  std::size_t i = 0;                          // next sample time to evaluate
  std::optional<std::vector<double>> ktimes;  // key times in range; nothing until read
  std::shared_ptr<std::vector<Position>> kpos = std::make_shared<std::vector<Position>>();
  std::size_t ki = 0;  // next key time to evaluate
};

// One item for each trail of a snapshot, in its order, all of them for as long as the list lives. A list of any length
// is ready at once and gone at once: an item is made when it, or one after it, is first asked for; and what a list
// leaves behind is put aside, for free_discarded_items.
class WorkItems {
 public:
  WorkItems() = default;
  explicit WorkItems(std::shared_ptr<const Registry::Snapshot> trails);
  // These items.
  explicit WorkItems(std::vector<std::shared_ptr<WorkItem>> items);
  WorkItems(WorkItems&&) noexcept = default;
  WorkItems& operator=(WorkItems&& other) noexcept {
    content_.swap(other.content_);
    return *this;
  }
  ~WorkItems();

  std::size_t size() const { return content_ ? content_->size : 0; }
  // n < size()
  std::shared_ptr<WorkItem> at(std::size_t n) const;

 private:
  friend void free_discarded_items(std::size_t);
  struct Content {
    std::size_t size = 0;
    std::shared_ptr<const Registry::Snapshot> trails;  // of which items are made
    std::vector<std::shared_ptr<WorkItem>> items;      // the first ones, made so far
    std::unique_ptr<Content> next;                     // discarded before this one
  };
  std::unique_ptr<Content> content_;
  static Content* discarded_;  // owned; lives on when the process ends, as what is in it may need a host that has gone
};

// Frees up to `count` of the items that discarded lists have left behind. Called where the engine has time anyway, so
// that a record of a thousand trails costs no slice more than a few of them.
void free_discarded_items(std::size_t count);

struct WorkRecord {
  std::int64_t gen = 0;  // _GEN when the record was built
  WorkItems items;
  std::size_t k = 0;   // current item; those before it are finished, dropped or failed
  double start = 0.0;  // playback range, frames
  double end = 0.0;
};

// Identifiers of the installed callbacks, or whatever single identifier a script has put in their place.
using CallbackIds = std::variant<std::vector<host::Value>, host::Value>;

// Puts `value` into `place`. What was there is let go last: that may run the host's code, which may look at `place`.
template <class T>
void put(T& place, T value) {
  std::swap(place, value);
}

// --- the handles: bound by _initialise, owned by the host, valid until the next _initialise ---------------------
extern host::CommandLayer* cmds;
extern host::ObjectModel* om;
extern host::AnimationModel* oma;
extern host::Interpreter* interpreter;

// --- the state -------------------------------------------------------------------------------------------------
extern std::string PLUGIN_FILE;  // the node plug-in beside the engine's own file; read-only after initialisation
extern Registry _REGISTRY;       // mutated in place
extern std::optional<CallbackIds> _CB_ID;
extern bool _REBUILDING;
extern std::int64_t _GEN;
extern bool _PENDING;
extern std::shared_ptr<WorkRecord> _WORK;
extern double _LAST_EDIT;         // wall-clock seconds
extern host::Value _MSG_HANDLER;  // none, or a callable that takes the message

struct Handles {
  host::CommandLayer* cmds;
  host::ObjectModel* om;
  host::AnimationModel* oma;
  host::Interpreter* interpreter;
};

// Starts the module: binds the handles and gives every variable its initial value, in the order above. Calling it
// again is a reload: everything starts anew, and trails already in the scene have no registry entries.
void _initialise(const Handles& handles);

// Every published module-level name in definition order; none begins with two underscores.
extern const std::vector<std::string> __all__;

}  // namespace vantorelix
