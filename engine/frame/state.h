// Everything the module remembers, and its one owner. docs/state.md says who writes and who reads each of these.
#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "engine/frame/ordered_map.h"
#include "engine/sampling/sample_times.h"
#include "host/command_layer.h"
#include "host/interpreter.h"
#include "host/object_model.h"
#include "host/value.h"
#include "host/vector.h"

namespace vantorelix {

class Sampler;

using Position = host::Vector;  // world space, the scene's linear unit
using Colour = host::Vector;    // r, g, b in 0..1

// A trail's settings: "source" (long name of the animated object), "samples_per_frame" (as it was passed), "ref"
// (spacing reference: none, or a one-element list with the baseline spacing). Keys may be missing: a script can
// delete them, and each reader says what it then does.
using Settings = OrderedMap<host::Value>;

using Registry = OrderedMap<std::shared_ptr<Settings>>;  // viz transform name -> settings

// One trail's place in the rebuild queue. Invariants: *pos has exactly i entries, kpos exactly ki.
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

// One item for each trail of a snapshot, in its order. An item is made when it is first asked for, and can be given up
// when it is done: a list of any length is ready at once, and gone at once.
class WorkItems {
 public:
  WorkItems() = default;
  explicit WorkItems(std::shared_ptr<const Registry::Snapshot> trails) : trails_(std::move(trails)) {}

  std::size_t size() const { return trails_ ? trails_->size() : 0; }
  // n < size(), and not given up. Valid until it is.
  WorkItem& operator[](std::size_t n);
  // Gives up the items before the n-th.
  void drop_before(std::size_t n);

 private:
  std::shared_ptr<const Registry::Snapshot> trails_;
  std::size_t dropped_ = 0;
  std::list<WorkItem> made_;  // the first items after those: one, as the queue goes
};

struct WorkRecord {
  std::int64_t gen = 0;  // _GEN when the record was built
  WorkItems items;
  std::size_t k = 0;   // current item; those before it are finished, dropped or failed
  double start = 0.0;  // playback range, frames
  double end = 0.0;
};

// Identifiers of the installed callbacks, or whatever single identifier a script has put in their place.
using CallbackIds = std::variant<std::vector<host::Value>, host::Value>;

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
