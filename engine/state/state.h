// Everything the module remembers, and its one owner. docs/state.md says who writes and who reads each of these.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
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

struct WorkItemStore;

// One item for each trail of a snapshot, in its order. Making and destroying a list takes constant time, however long
// it is: an item is made when it, or one after it, is first asked for, and stays the same object from then on; a
// destroyed list puts its items aside, for free_discarded_items.
class WorkItems {
 public:
  WorkItems() = default;
  explicit WorkItems(std::shared_ptr<const Registry::Snapshot> trails);
  // These items.
  explicit WorkItems(std::vector<std::shared_ptr<WorkItem>> items);
  WorkItems(WorkItems&& other) noexcept : store_(std::exchange(other.store_, nullptr)) {}
  WorkItems& operator=(WorkItems&& other) noexcept {
    std::swap(store_, other.store_);
    return *this;
  }
  ~WorkItems();

  std::size_t size() const;
  // n < size()
  std::shared_ptr<WorkItem> at(std::size_t n) const;

 private:
  WorkItemStore* store_ = nullptr;  // owned
};

// Frees up to `count` of the items that discarded lists have left behind. Called where the engine has time anyway, so
// that a record of a thousand trails costs no slice more than a few of them.
void free_discarded_items(std::size_t count);
// That count with each item of work that is done, with each edit, and with a step that only waits: more than the queue
// makes meanwhile, so that they never pile up, and few enough to take microseconds.
inline constexpr std::size_t kFreedWithItem = 2;
inline constexpr std::size_t kFreedWithEdit = 8;
inline constexpr std::size_t kFreedWhileWaiting = 64;

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

// The handles and the state, each member under its published name. What is added here goes with every OwnState.
struct ModuleState {
  // --- the handles: bound by _initialise, owned by the host, valid until the next _initialise --------------------
  host::CommandLayer* cmds = nullptr;
  host::ObjectModel* om = nullptr;
  host::AnimationModel* oma = nullptr;
  host::Interpreter* interpreter = nullptr;

  // --- the state -------------------------------------------------------------------------------------------------
  std::string PLUGIN_FILE;  // the node plug-in beside the engine's own file; read-only after initialisation
  Registry _REGISTRY;       // mutated in place
  std::optional<CallbackIds> _CB_ID;
  bool _REBUILDING = false;
  std::int64_t _GEN = 0;
  bool _PENDING = false;
  // The items of destroyed lists, until free_discarded_items frees them. Owned, but not freed when the process ends:
  // the values in it may belong to a host that is gone by then.
  WorkItemStore* discarded = nullptr;
  std::shared_ptr<WorkRecord> _WORK;
  double _LAST_EDIT = 0.0;   // wall-clock seconds
  host::Value _MSG_HANDLER;  // none, or a callable that takes the message
};

// The one that is in force: the names below are its parts, and the engine knows no other.
extern ModuleState module_state;

inline constexpr host::CommandLayer*& cmds = module_state.cmds;
inline constexpr host::ObjectModel*& om = module_state.om;
inline constexpr host::AnimationModel*& oma = module_state.oma;
inline constexpr host::Interpreter*& interpreter = module_state.interpreter;
inline constexpr std::string& PLUGIN_FILE = module_state.PLUGIN_FILE;
inline constexpr Registry& _REGISTRY = module_state._REGISTRY;
inline constexpr std::optional<CallbackIds>& _CB_ID = module_state._CB_ID;
inline constexpr bool& _REBUILDING = module_state._REBUILDING;
inline constexpr std::int64_t& _GEN = module_state._GEN;
inline constexpr bool& _PENDING = module_state._PENDING;
inline constexpr std::shared_ptr<WorkRecord>& _WORK = module_state._WORK;
inline constexpr double& _LAST_EDIT = module_state._LAST_EDIT;
inline constexpr host::Value& _MSG_HANDLER = module_state._MSG_HANDLER;

struct Handles {
  host::CommandLayer* cmds;
  host::ObjectModel* om;
  host::AnimationModel* oma;
  host::Interpreter* interpreter;
};

// Starts the module: binds the handles and gives every variable its initial value, in the order above. Calling it
// again is a reload: everything starts anew, and trails already in the scene have no registry entries.
void _initialise(const Handles& handles);

// Lets go of everything: no handle is bound, every variable has its initial value, and nothing discarded is left.
void _forget();

// Every published module-level name in definition order; none begins with two underscores.
extern const std::vector<std::string> __all__;

}  // namespace vantorelix
